// SPDX-License-Identifier: MIT
// zrthumb --prune and --clear while others use the cache, where they may not do everything, and until they are
// interrupted.

#include "tests/host/zrthumb_fixture.h"
#include "tests/support/qt_printers.h"
#include "tests/support/unprivileged.h"

#include <csignal>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 60000;

class CacheCareFaultsTest : public ZrthumbTest
{
protected:
    void SetUp() override
    {
        ZrthumbTest::SetUp();
        m_environment.insert("LD_PRELOAD", ZRTHUMB_FASTER_CLOCK);
        // A sanitizer's library would have to be the first one.
        m_environment.insert("ASAN_OPTIONS", "verify_asan_link_order=0");
    }

    // A cache with a picture of a source that is gone, and an orphan.
    void makeCache()
    {
        const QString path = source("gone.vrx");
        ASSERT_EQ(run({path, source("kept.vrx")}).status, 0);
        ASSERT_TRUE(QFile::remove(path));
        writeFile(png("orphan.png"), "orphan");
        for (const char* const name : {"gone.vrxvrx.png", "orphan.png"})
            moveTimeStamp(png(name), -100);
    }

    static QStringList pictures()
    {
        return QDir(thumbnailImageFolder()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    void start(QProcess& program, const QString& option) const
    {
        program.setProcessEnvironment(m_environment);
        program.start(QStringLiteral(ZRTHUMB_PROGRAM), {option});
        ASSERT_TRUE(program.waitForStarted());
    }
};

struct Lock {
    const char* name;
    QStringList statements;
};

class LockedCacheTest : public CacheCareFaultsTest, public ::testing::WithParamInterface<Lock>
{
};

TEST_P(LockedCacheTest, KeepsEverything)
{
    makeCache();
    QProcess holder;
    holder.start(QStringLiteral(ZRTHUMB_DATABASE_HOLDER),
                 QStringList{defaultDatabasePath(), QString::number(kTimeoutMs)} + GetParam().statements);
    ASSERT_TRUE(holder.waitForReadyRead());
    const QStringList before = pictures();
    for (const char* const option : {"--prune", "--clear"}) {
        const ProgramRun result = run({option});
        EXPECT_EQ(result.out, QStringList());
        EXPECT_EQ(result.err, QStringList("zrthumb: the cache's database is locked by another program: end that "
                                          "program, or try again"));
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(pictures(), before);
    }
    holder.closeWriteChannel();
    ASSERT_TRUE(holder.waitForFinished());
    EXPECT_EQ(run({"--prune"}).status, 0);
    EXPECT_EQ(pictures(), QStringList("kept.vrxvrx.png"));
}

const Lock kLocks[] = {
    {"Everything", {"begin exclusive"}},
    {"AgainstWriters", {"begin immediate"}},
    {"ByAReader", {"begin", "select * from thumbnail"}},
};

INSTANTIATE_TEST_SUITE_P(Database, LockedCacheTest, ::testing::ValuesIn(kLocks),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(CacheCareFaultsTest, PicturesThatCannotBeRemovedAreTold)
{
    makeCache();
    const QString folder = QDir::cleanPath(thumbnailImageFolder());
    const Unprivileged user({QFileInfo(dataFolder()).path(), m_folder.path()});
    setMode(folder, 0555);
    ProgramRun result = run({"--prune"});
    EXPECT_EQ(result.out, QStringList("removed 1 row of a file that is gone"));
    ASSERT_EQ(result.err.size(), 1);
    EXPECT_TRUE(result.err[0].startsWith("zrthumb: 2 pictures could not be removed, such as " + folder));
    EXPECT_TRUE(result.err[0].endsWith(".png: Permission denied"));
    EXPECT_EQ(result.status, 1);

    setMode(folder, 0755);
    ASSERT_TRUE(QFile::remove(png("gone.vrxvrx.png")));
    setMode(folder, 0555);
    result = run({"--prune"});
    EXPECT_EQ(result.out, QStringList());
    EXPECT_EQ(result.err,
              QStringList("zrthumb: 1 picture could not be removed: " + png("orphan.png") + ": Permission denied"));
    EXPECT_EQ(result.status, 1);
    setMode(folder, 0755);
}

TEST_F(CacheCareFaultsTest, FoldersThatCannotBeReadAreTold)
{
    makeCache();
    const QString folder = QDir::cleanPath(thumbnailImageFolder());
    const Unprivileged user({QFileInfo(dataFolder()).path(), m_folder.path()});
    setMode(folder, 0);
    ProgramRun result = run({"--prune"});
    EXPECT_EQ(result.err, QStringList("zrthumb: " + folder + " cannot be listed: get the right to read it"));
    EXPECT_EQ(result.status, 1);
    setMode(folder, 0755);

    setMode(dataFolder(), 0);
    result = run({"--prune"});
    EXPECT_EQ(result.out, QStringList());
    EXPECT_EQ(result.err, QStringList("zrthumb: " + dataFolder() + " cannot be written: permission denied"));
    EXPECT_EQ(result.status, 1);
    setMode(dataFolder(), 0755);
}

// Such is the locale of jobs that run at set times. The file is there, and its picture is named.
TEST_F(CacheCareFaultsTest, NamesAreReadInALocaleOfAsciiOnly)
{
    const QString gone = source(QString::fromUtf8("gr\xC3\xBC\xC3\x9F.vrx"));
    ASSERT_EQ(run({gone, source(QString::fromUtf8("\xC3\xBC.vrx"))}).status, 0);
    ASSERT_TRUE(QFile::remove(gone));
    for (const QFileInfo& picture : QDir(thumbnailImageFolder()).entryInfoList(QDir::Files))
        moveTimeStamp(picture.filePath(), -100);
    m_environment.insert("LC_ALL", "C");
    const ProgramRun result = run({"--prune"});
    EXPECT_TRUE(result.out.value(0).startsWith("removed 1 row of a file that is gone and 1 picture, "));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(pictures(), QStringList(QString::fromUtf8("\xC3\xBCvrx.png").replace("vrx.png", ".vrxvrx.png")));
}

TEST_F(CacheCareFaultsTest, DisplayIsNotNeeded)
{
    makeCache();
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY"})
        m_environment.remove(name);
    m_environment.insert("QT_QPA_PLATFORM", "nonsense");
    const ProgramRun result = run({"--clear"});
    EXPECT_EQ(result.err, QStringList());
    EXPECT_EQ(result.status, 0);
}

TEST_F(CacheCareFaultsTest, InterruptionEndsTheWait)
{
    makeCache();
    // Made again and again, it is waited for to the last.
    moveTimeStamp(png("orphan.png"), 100000);
    for (const int signal : {SIGINT, SIGTERM}) {
        QProcess program;
        start(program, "--prune");
        // Its row is removed before the wait.
        while (program.state() != QProcess::NotRunning && pictures().contains("gone.vrxvrx.png"))
            program.waitForFinished(1);
        ::kill(static_cast<pid_t>(program.processId()), signal);
        ASSERT_TRUE(program.waitForFinished(kTimeoutMs));
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 128 + signal);
        EXPECT_EQ(program.readAllStandardError(), "zrthumb: interrupted\n");
        EXPECT_TRUE(pictures().contains("orphan.png"));
        makeCache();
        moveTimeStamp(png("orphan.png"), 100000);
    }
}

} // namespace
} // namespace zr::test
