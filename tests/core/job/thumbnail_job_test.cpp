// SPDX-License-Identifier: MIT
#include "core/job/thumbnail_job.h"

#include "core/data_location.h"
#include "core/log_file.h"
#include "readers/reader_table.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/vrx_bytes.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <new>

namespace zr::test
{
namespace
{

const QStringList kNewEntry = {"84  throw "};
const QStringList kStaleEntry = {"106  throw "};
const QStringList kNotSaved = {"69  throw ", "73 getImage False"};

class ThumbnailJobTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        restartLog();
    }

    QString source(const QString& name, const QByteArray& bytes = samples::oneColourVrxBytes(0xF800)) const
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        return writeFile(path, bytes);
    }

    static QString png(const QString& name) { return thumbnailImageFolder() + name; }

    static QImage cachedPicture(const QString& name)
    {
        return QImage(png(name)).convertToFormat(QImage::Format_RGB888);
    }

    // Runs a request; afterwards the log has only its lines.
    static bool run(const QString& path)
    {
        restartLog();
        return ThumbnailJob(path).run();
    }

    static QString row(const QString& path)
    {
        const ThumbnailDatabase database{QString()};
        QStringList values;
        for (const char* column : {"thumPath", "thumTime", "filePath", "fileTime", "fileSize"})
            values.append(database.queryValue(path, column).toString());
        return values.join('|');
    }

    static void execute(const QString& statement)
    {
        const ThumbnailDatabase database{QString()};
        QSqlQuery query;
        ASSERT_TRUE(query.exec(statement)) << statement.toStdString();
    }

    QTemporaryDir m_folder;
};

TEST_F(ThumbnailJobTest, PictureIsSavedAndRecorded)
{
    const QString path = source("Part.vrx");
    EXPECT_TRUE(run(path));
    EXPECT_EQ(logMessages(), kNewEntry);

    EXPECT_EQ(cachedPicture("Part.vrxvrx.png"), makeReader("vrx", path)->getImage());
    const QFileInfo info(path);
    EXPECT_EQ(row(path), QStringLiteral("%1|0|%2|%3|%4")
                             .arg(png("Part.vrxvrx.png"), path)
                             .arg(info.lastModified().toSecsSinceEpoch())
                             .arg(info.size()));
}

TEST_F(ThumbnailJobTest, SecondRequestIsAnsweredFromTheCache)
{
    const QString path = source("a.vrx");
    ASSERT_TRUE(run(path));
    writeFile(png("a.vrxvrx.png"), "kept as it is");
    EXPECT_TRUE(run(path));
    EXPECT_EQ(logMessages(), QStringList());
    EXPECT_EQ(readFile(png("a.vrxvrx.png")), "kept as it is");
}

struct TimeStep {
    qint64 seconds;
    bool fresh;
};

TEST_F(ThumbnailJobTest, TimeStampMayMoveForwardByTwoMinutes)
{
    for (const TimeStep& step : {TimeStep{0, true},
                                 {1, true},
                                 {100, true},
                                 {120, true},
                                 {121, false},
                                 {-1, false},
                                 {-100000, false},
                                 {100000, false}}) {
        const QString path = source("a.vrx");
        ASSERT_TRUE(run(path));
        moveTimeStamp(path, step.seconds);
        EXPECT_TRUE(run(path));
        EXPECT_EQ(logMessages(), step.fresh ? QStringList() : kStaleEntry) << step.seconds;
        QFile::remove(path);
        execute("delete from thumbnail");
    }
}

TEST_F(ThumbnailJobTest, OtherSizeMakesANewPicture)
{
    const QString path = source("a.vrx");
    ASSERT_TRUE(run(path));
    const QDateTime time = QFileInfo(path).lastModified();
    source("a.vrx", samples::oneColourVrxBytes(0x07C0) + "more");
    moveTimeStamp(path, QFileInfo(path).lastModified().secsTo(time));
    EXPECT_TRUE(run(path));
    EXPECT_EQ(logMessages(), kStaleEntry);
    EXPECT_EQ(cachedPicture("a.vrxvrx.png"), makeReader("vrx", path)->getImage());
}

TEST_F(ThumbnailJobTest, DeletedPngIsMadeAgain)
{
    const QString path = source("a.vrx");
    ASSERT_TRUE(run(path));
    ASSERT_TRUE(QFile::remove(png("a.vrxvrx.png")));
    EXPECT_TRUE(run(path));
    EXPECT_EQ(logMessages(), kStaleEntry);
    EXPECT_FALSE(QImage(png("a.vrxvrx.png")).isNull());
}

TEST_F(ThumbnailJobTest, SuffixIsMatchedWithoutCaseAndDoubledUnchanged)
{
    const std::pair<const char*, const char*> cases[] = {
        {"Part.VRX", "Part.VRXVRX.png"},
        {"a.vrxdlp", "a.vrxdlpvrxdlp.png"},
        {"two.dots.VrxDlp", "two.dots.VrxDlpVrxDlp.png"},
        {".vrx", ".vrxvrx.png"},
    };
    for (const auto& [name, pngName] : cases) {
        EXPECT_TRUE(run(source(name))) << name;
        EXPECT_TRUE(QFileInfo::exists(png(pngName))) << pngName;
    }
}

TEST_F(ThumbnailJobTest, OtherSuffixesAreNotSupported)
{
    for (const char* name : {"a.txt", "noSuffix", "endsWithDot.", "a.photon", "a.vrx2", "vrx", "a.vrx.bak"}) {
        EXPECT_FALSE(run(source(name))) << name;
        EXPECT_EQ(logMessages(), QStringList({"84  throw ", "60  throw ", "73 getImage False"})) << name;
    }
    EXPECT_EQ(QDir(thumbnailImageFolder()).entryList(QDir::Files), QStringList());
}

TEST_F(ThumbnailJobTest, EqualNamesInDifferentFoldersShareOnePng)
{
    const QString first = source("a/x.vrx", samples::oneColourVrxBytes(0xF800));
    const QString second = source("b/x.vrx", samples::oneColourVrxBytes(0x001F));
    ASSERT_TRUE(run(first));
    ASSERT_TRUE(run(second));
    EXPECT_EQ(row(first).section('|', 0, 0), png("x.vrxvrx.png"));
    EXPECT_EQ(row(second).section('|', 0, 0), png("x.vrxvrx.png"));
    EXPECT_EQ(cachedPicture("x.vrxvrx.png"), makeReader("vrx", second)->getImage());
    EXPECT_TRUE(run(first));
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(ThumbnailJobTest, PathWithAnApostropheFailsEachTime)
{
    const QString path = source("it's.vrx");
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(run(path));
        EXPECT_EQ(logMessages(), kNewEntry + kNotSaved);
    }
    EXPECT_TRUE(QFileInfo::exists(png("it's.vrxvrx.png")));
}

TEST_F(ThumbnailJobTest, RowWithoutAPngPathFailsEachTime)
{
    const QString path = source("a.vrx");
    execute(QStringLiteral("insert into thumbnail values(null, 0, '%1', 0, 0)").arg(path));
    for (int i = 0; i < 2; ++i) {
        EXPECT_FALSE(run(path));
        EXPECT_EQ(logMessages(), kNewEntry + kNotSaved);
    }
}

TEST_F(ThumbnailJobTest, FirstRequestOfAFreshProfileFailsOnce)
{
    const QString path = source("a.vrx");
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    LogFile::end();
    LogFile::instance()->init(QString());
    EXPECT_FALSE(ThumbnailJob(path).run());
    EXPECT_EQ(logMessages(), kNewEntry + kNotSaved);
    EXPECT_TRUE(QFileInfo::exists(png("a.vrxvrx.png")));

    EXPECT_TRUE(run(path));
    EXPECT_EQ(logMessages(), kNewEntry);
}

TEST_F(ThumbnailJobTest, FileInPlaceOfThePngFolderFails)
{
    ASSERT_TRUE(QDir().mkpath(dataFolder()));
    QString folder = thumbnailImageFolder();
    folder.chop(1);
    writeFile(folder, "");
    EXPECT_FALSE(run(source("a.vrx")));
    EXPECT_EQ(logMessages(), kNewEntry + kNotSaved);
}

TEST_F(ThumbnailJobTest, PngThatCannotBeWrittenLeavesNoRow)
{
    const QString path = source("a.vrx");
    ASSERT_TRUE(QDir().mkpath(png("a.vrxvrx.png")));
    EXPECT_FALSE(run(path));
    EXPECT_EQ(logMessages(), kNewEntry + kNotSaved);
    EXPECT_EQ(row(path), "||||");
}

TEST_F(ThumbnailJobTest, InvalidDatabaseFailsAfterThePngIsMade)
{
    const QString path = source("a.vrx");
    writeFile(defaultDatabasePath(), QByteArray(1000, 'x'));
    EXPECT_FALSE(run(path));
    EXPECT_EQ(logMessages(), QStringList({"106 database create faild"}) + kNewEntry + kNotSaved);
    EXPECT_TRUE(QFileInfo::exists(png("a.vrxvrx.png")));
}

TEST_F(ThumbnailJobTest, ReaderFailureLeavesNoPngAndNoRow)
{
    const QString path = source("a.vrx", "short");
    EXPECT_FALSE(run(path));
    EXPECT_EQ(logMessages(), kNewEntry + failureLines(29, "DlpHead_t read less\n" + path) +
                                 QStringList({"29 fileReadLess", "65  throw ", "73 getImage False"}));
    EXPECT_FALSE(QFileInfo::exists(png("a.vrxvrx.png")));
    EXPECT_EQ(row(path), "||||");
}

TEST_F(ThumbnailJobTest, ErrorsThatAreNotKeysLeaveTheJob)
{
    samples::VrxParts parts;
    parts.preview.width = 2;
    parts.preview.height = 2;
    parts.preview.dataSize = -1;
    const QString path = source("a.vrx", samples::vrxBytes(parts));
    restartLog();
    ThumbnailJob job(path);
    EXPECT_THROW(job.run(), std::bad_alloc);
    EXPECT_EQ(logMessages(), kNewEntry);
}

} // namespace
} // namespace zr::test
