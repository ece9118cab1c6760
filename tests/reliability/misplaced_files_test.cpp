// SPDX-License-Identifier: MIT
// Something else in place of one of the cache's files: folders, pipes, links, devices, garbage.

#include "core/data_location.h"
#include "tests/reliability/request_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <functional>

#include <sys/stat.h>
#include <unistd.h>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 60000;

const QStringList kWithoutDatabase =
    QStringList{"110 database no open"} + kNewEntry + kNotSaved + QStringList{"110 database no open"};
const QStringList kWithoutTable =
    QStringList{"106 database create faild"} + kNewEntry + kNotSaved + QStringList{"106 database create faild"};

void makeFolder(const QString& path)
{
    ASSERT_TRUE(QDir().mkpath(path));
}

void makePipe(const QString& path)
{
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
}

std::function<void(const QString&)> linkTo(const QString& target)
{
    return [target](const QString& path) {
        ASSERT_EQ(symlink(QFile::encodeName(target).constData(), QFile::encodeName(path).constData()), 0);
    };
}

void makeLinkLoop(const QString& path)
{
    linkTo(path)(path);
}

void makeDanglingLink(const QString& path)
{
    linkTo(path + ".target")(path);
}

void makeLinkToPipe(const QString& path)
{
    makePipe(path + ".pipe");
    linkTo(path + ".pipe")(path);
}

// Removes it whatever it is, with the files that it was made of.
void remove(const QString& path)
{
    if (QFileInfo(path).isDir() && !QFileInfo(path).isSymLink())
        QDir(path).removeRecursively();
    else
        QFile::remove(path);
    for (const char* rest : {".target", ".pipe", "-journal", "-wal", "-shm"})
        QFile::remove(path + rest);
}

struct Misplaced {
    const char* name;
    std::function<void(const QString&)> make;
    bool succeeds;
    QStringList log;
};

std::ostream& operator<<(std::ostream& out, const Misplaced& row)
{
    return out << row.name;
}

std::string nameOf(const ::testing::TestParamInfo<Misplaced>& row)
{
    return row.param.name;
}

class MisplacedTest : public RequestTest, public ::testing::WithParamInterface<Misplaced>
{
protected:
    // Makes it in place of `path`, and removes it after the request.
    static void expectOutcomeAndRecovery(const QString& path, const QString& source)
    {
        remove(path);
        GetParam().make(path);
        const RequestOutcome outcome = request(source);
        EXPECT_EQ(outcome.loaded, GetParam().succeeds);
        EXPECT_EQ(outcome.picture, GetParam().succeeds ? pictureOf(source) : QImage());
        EXPECT_EQ(outcome.log, GetParam().log);
        remove(path);
        expectRequestWorks(source);
    }
};

class MisplacedLogTest : public MisplacedTest
{
};

TEST_P(MisplacedLogTest, OnlyLosesItsLines)
{
    expectOutcomeAndRecovery(defaultLogPath(), source("a.vrx"));
}

const Misplaced kLogs[] = {
    {"Folder", makeFolder, true, {}},
    {"Pipe", makePipe, true, {}},
    {"LinkToPipe", makeLinkToPipe, true, {}},
    {"LinkLoop", makeLinkLoop, true, {}},
    {"FullDevice", linkTo("/dev/full"), true, {}},
    {"EmptyDevice", linkTo("/dev/null"), true, {}},
};

INSTANTIATE_TEST_SUITE_P(Misplaced, MisplacedLogTest, ::testing::ValuesIn(kLogs), nameOf);

class MisplacedDatabaseTest : public MisplacedTest
{
};

TEST_P(MisplacedDatabaseTest, FailsUntilItIsGone)
{
    expectOutcomeAndRecovery(defaultDatabasePath(), source("a.vrx"));
}

const Misplaced kDatabases[] = {
    {"Folder", makeFolder, false, kWithoutDatabase},
    {"Pipe", makePipe, false, kWithoutDatabase},
    {"LinkToPipe", makeLinkToPipe, false, kWithoutDatabase},
    {"LinkLoop", makeLinkLoop, false, kWithoutDatabase},
    {"DanglingLink", makeDanglingLink, true, kNewEntry},
    {"FullDevice", linkTo("/dev/full"), false, kWithoutTable},
    {"EndlessDevice", linkTo("/dev/zero"), false, kWithoutTable},
    {"EmptyDevice", linkTo("/dev/null"), false, kWithoutTable},
};

INSTANTIATE_TEST_SUITE_P(Misplaced, MisplacedDatabaseTest, ::testing::ValuesIn(kDatabases), nameOf);

class MisplacedPngTest : public MisplacedTest
{
};

TEST_P(MisplacedPngTest, NewPictureIsSavedOrTheFailureReported)
{
    const QString path = source("a.vrx");
    expectOutcomeAndRecovery(pngOf(path), path);
}

const Misplaced kPngs[] = {
    {"Garbage", [](const QString& path) { writeFile(path, "garbage"); }, true, kNewEntry},
    {"Folder", makeFolder, false, kNewEntry + kNotSaved},
    {"Pipe", makePipe, false, kNewEntry + kNotSaved},
    {"LinkToPipe", makeLinkToPipe, false, kNewEntry + kNotSaved},
    {"LinkLoop", makeLinkLoop, false, kNewEntry + kNotSaved},
    {"DanglingLink", makeDanglingLink, true, kNewEntry},
    {"FullDevice", linkTo("/dev/full"), false, kNewEntry + kNotSaved},
};

INSTANTIATE_TEST_SUITE_P(Misplaced, MisplacedPngTest, ::testing::ValuesIn(kPngs), nameOf);

// The cache only checks whether a PNG exists, not its contents.
class MisplacedFreshPngTest : public MisplacedTest
{
};

TEST_P(MisplacedFreshPngTest, ReturnsNoPictureUntilItIsRemoved)
{
    const QString path = source("a.vrx");
    expectRequestWorks(path);
    remove(pngOf(path));
    GetParam().make(pngOf(path));
    for (int i = 0; i < 2; ++i) {
        const RequestOutcome outcome = request(path);
        EXPECT_TRUE(outcome.loaded);
        EXPECT_TRUE(outcome.picture.isNull());
        EXPECT_EQ(outcome.log, QStringList());
    }
    remove(pngOf(path));
    EXPECT_EQ(request(path).log, kStaleEntry);
    expectRequestWorks(path);
}

const Misplaced kFreshPngs[] = {
    {"Garbage", [](const QString& path) { writeFile(path, "garbage"); }, true, {}},
    {"EmptyFile", [](const QString& path) { writeFile(path, {}); }, true, {}},
    {"Folder", makeFolder, true, {}},
    {"Pipe", makePipe, true, {}},
    {"LinkToPipe", makeLinkToPipe, true, {}},
};

INSTANTIATE_TEST_SUITE_P(Misplaced, MisplacedFreshPngTest, ::testing::ValuesIn(kFreshPngs), nameOf);

class MisplacedFilesTest : public RequestTest
{
};

TEST_F(MisplacedFilesTest, LinkInPlaceOfAPngStaysALink)
{
    const QString path = source("a.vrx");
    const QString elsewhere = writeFile(m_folder.filePath("elsewhere.png"), "old");
    linkTo(elsewhere)(pngOf(path));
    expectRequestWorks(path);
    EXPECT_EQ(QFile::symLinkTarget(pngOf(path)), elsewhere);
    EXPECT_FALSE(QImage(elsewhere).isNull());
}

// A name of the max length has no room for the suffix of a temporary name.
TEST_F(MisplacedFilesTest, PngNameOfMaxLengthIsUsed)
{
    constexpr int kMaxNameBytes = 255;
    const QString suffixes = QStringLiteral(".vrxvrx.png");
    const QString path = source(QString(kMaxNameBytes - suffixes.size(), 'n') + ".vrx");
    expectRequestWorks(path);
    EXPECT_EQ(request(source(QString(kMaxNameBytes - suffixes.size() + 1, 'n') + ".vrx")).log, kNewEntry + kNotSaved);
}

// Nor does it need the log to tell why the request failed.
TEST_F(MisplacedFilesTest, ProgramDoesNotWaitForALogThatIsAPipe)
{
    remove(defaultLogPath());
    makePipe(defaultLogPath());
    QProcess program;
    program.start(QStringLiteral(ZRTHUMB_PROGRAM), {sourceOf("short.vrx", "x")});
    ASSERT_TRUE(program.waitForFinished(kTimeoutMs));
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_TRUE(
        program.readAllStandardError().endsWith(": no thumbnail: the file ends before its header is complete\n"));
}

} // namespace
} // namespace zr::test
