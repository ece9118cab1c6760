// SPDX-License-Identifier: MIT
// Requests for files with malicious names. hostile_names_test has the tests of the database alone.

#include "core/data_location.h"
#include "core/log_file.h"
#include "host/request.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/vrx_bytes.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QTemporaryDir>

#include <utility>

namespace zr::test
{
namespace
{

struct NameCase {
    const char* name; ///< UTF-8; of a file in the test's own folder
    const char* reason = nullptr;
};

const char kApostrophe[] = "its path has an apostrophe, which the cache cannot record: rename it";

class HostileRequestTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        ASSERT_TRUE(QDir().mkpath(thumbnailImageFolder()));
        m_victim = writeFile(m_folder.filePath("victim.vrx"), samples::oneColourVrxBytes(0xF800));
        m_victimsPicture = requestThumbnail(m_victim, QString()).picture;
        ASSERT_FALSE(m_victimsPicture.isNull());
    }

    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

    static QStringList cachedFiles()
    {
        QStringList files;
        QDirIterator entries(dataFolder(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext())
            files.append(entries.next().mid(dataFolder().size() + 1));
        files.sort();
        return files;
    }

    // The victim's request is still answered from the cache, with its own picture.
    void expectVictimUntouched()
    {
        const QDateTime before = QFileInfo(thumbnailImageFolder() + "victim.vrxvrx.png").lastModified();
        restartLog();
        EXPECT_EQ(requestThumbnail(m_victim, QString()).picture, m_victimsPicture);
        EXPECT_EQ(logMessages(), QStringList({"37 in 2 " + m_victim, "63 app after"}));
        EXPECT_EQ(QFileInfo(thumbnailImageFolder() + "victim.vrxvrx.png").lastModified(), before);
    }

    QTemporaryDir m_folder;
    QString m_victim;
    QImage m_victimsPicture;
};

class HostileNameTest : public HostileRequestTest, public ::testing::WithParamInterface<NameCase>
{
};

// The attacker's files have the size and time stamp of the victim's, so that the cache could mistake one for the other.
TEST_P(HostileNameTest, FailsOrGetsItsOwnPicture)
{
    const QString hostile = writeFile(path(GetParam().name), samples::oneColourVrxBytes(0x07C0));
    ASSERT_TRUE(QFileInfo(hostile).isFile());
    const QStringList filesBefore = cachedFiles();
    for (int i = 0; i < 2; ++i) {
        const RequestResult result = requestThumbnail(hostile, QString());
        if (GetParam().reason) {
            EXPECT_EQ(result.failure.reason, GetParam().reason);
            EXPECT_TRUE(result.picture.isNull());
        } else {
            EXPECT_EQ(result.failure.reason, "");
            EXPECT_EQ(QFileInfo(result.pngPath).path() + '/', thumbnailImageFolder());
            EXPECT_FALSE(result.picture.isNull());
            EXPECT_NE(result.picture, m_victimsPicture);
        }
        expectVictimUntouched();
    }
    // At most one PNG, and no file in another folder.
    QStringList added = cachedFiles();
    for (const QString& file : filesBefore)
        EXPECT_EQ(added.removeAll(file), 1) << file.toStdString();
    EXPECT_LE(added.size(), 1);
    for (const QString& file : std::as_const(added))
        EXPECT_TRUE(file.startsWith("thumbnailImage/") && file.endsWith("vrxvrx.png")) << file.toStdString();
}

const NameCase kNames[] = {
    {"it's.vrx", kApostrophe},
    {"x' or 1 or '.vrx", kApostrophe},
    {"x' or 1--.vrx", kApostrophe},
    {"x' union select char(47),0,char(47),1,2--.vrx", kApostrophe},
    {"x',0,char(47)||'a.vrx',1,2) on conflict(filePath) do update set fileSize=7--.vrx", kApostrophe},
    {"x'; drop table thumbnail;--.vrx", kApostrophe},
    {"%1%2%3%4%5.vrx"},
    {"%L1 %99 %%.vrx"},
    {"a;drop table thumbnail;--.vrx"},
    {"..vrx"},
    {".vrx"},
    {"....vrx"},
    {"-o.vrx"},
    {"..\\..\\x.vrx"},
    {"C:x.vrx"},
    {"NUL.vrx"},
    {"CON.vrx"},
    {"a\nb.vrx"},
    {"a\r\x1b[2Jb.vrx"},
    {"\xE2\x80\xAEgnp.vrx"}, // NOLINT(misc-misleading-bidirectional): that is what the name is for
    {"\xF0\x9F\x96\xA8.vrx"},
    {"trailing .vrx"},
};

INSTANTIATE_TEST_SUITE_P(Names, HostileNameTest, ::testing::ValuesIn(kNames));

// The PNG's name is seven bytes longer than the file's, or more for longer suffixes.
TEST_F(HostileRequestTest, NamesThatLeaveNoRoomForThePngsNameFail)
{
    constexpr int kMaxNameBytes = 255;
    const QByteArray fits(kMaxNameBytes - 2 * 4 - 3, 'n');
    const QByteArray tooLong = fits + 'n';
    EXPECT_EQ(requestThumbnail(writeFile(path(fits + ".vrx"), samples::oneColourVrxBytes(1)), QString()).failure.reason,
              "");
    EXPECT_EQ(
        requestThumbnail(writeFile(path(tooLong + ".vrx"), samples::oneColourVrxBytes(1)), QString()).failure.reason,
        "its name is too long for that of its picture in the cache: shorten it");
    expectVictimUntouched();
}

TEST_F(HostileRequestTest, NamesThatAreNotTextFail)
{
    const QByteArray name = QFile::encodeName(m_folder.path()) + "/\xff\xfe.vrx";
    QFile file;
    FILE* const stream = std::fopen(name.constData(), "w");
    ASSERT_NE(stream, nullptr);
    std::fclose(stream);
    const RequestResult result = requestThumbnail(QFile::decodeName(name), QString());
    EXPECT_EQ(result.failure.reason, "its name is not text (UTF-8): rename it");
    expectVictimUntouched();
    std::remove(name.constData());
}

TEST_F(HostileRequestTest, PathsThatAreNotFilesAreRefused)
{
    const QString zero = m_folder.filePath("victim.vrx") + QChar(0) + ".vrx";
    for (const QString& path : {m_folder.filePath(".."), m_folder.filePath("."), m_folder.path() + "/", QString("/"),
                                QString("."), QString(), QString("/dev/zero"), QString("/proc/self/mem"), zero}) {
        const RequestResult result = requestThumbnail(path, QString());
        EXPECT_FALSE(result.succeeded()) << path.toStdString();
        EXPECT_TRUE(result.picture.isNull());
    }
    expectVictimUntouched();
}

// A name with line feeds can write its own lines into the log. zrthumb reads the lines after the one that names its
// file, so only the reason of the forging file itself can be wrong.
TEST_F(HostileRequestTest, ForgedLogLinesOnlyConcernTheForger)
{
    const QString forged = writeFile(
        path("x\n21.11.2026 - 12:00:00 37 in 2 victim.vrx\n21.11.2026 - 12:00:00 45 fileIsCanNoRender\nx.vrx"),
        "short");
    const QString damaged = writeFile(m_folder.filePath("damaged.vrx"), "short");
    EXPECT_FALSE(requestThumbnail(forged, QString()).succeeded());
    EXPECT_EQ(requestThumbnail(damaged, QString()).failure.reason, "the file ends before its header is complete");
    expectVictimUntouched();
}

// Times before 1970 are huge numbers in the database, which SQLite rounds: such a picture is made again each time.
TEST_F(HostileRequestTest, ExtremeTimeStampsAreHarmless)
{
    for (const qint64 seconds : {qint64{-1}, qint64{-86400} * 365 * 60, qint64{0}, qint64{86400} * 365 * 400}) {
        const QString old = writeFile(m_folder.filePath("old.vrx"), samples::oneColourVrxBytes(0x07C0));
        QFile file(old);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::fromSecsSinceEpoch(seconds), QFileDevice::FileModificationTime));
        file.close();
        for (int i = 0; i < 3; ++i) {
            restartLog();
            EXPECT_EQ(requestThumbnail(old, QString()).failure.reason, "") << seconds;
            const bool fromCache = logMessages().size() == 2;
            EXPECT_EQ(fromCache, seconds >= 0 && i > 0) << seconds << ", request " << i;
        }
        expectVictimUntouched();
    }
}

} // namespace
} // namespace zr::test
