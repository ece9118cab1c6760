// SPDX-License-Identifier: MIT
// zrthumb --check: the states of the data folder and its files that keep thumbnails from being made.

#include "tests/host/check/check_test.h"

#include "core/data_location.h"
#include "tests/support/files.h"
#include "tests/support/foreign_database.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <functional>

#include <sys/stat.h>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 60000;

// A folder that nobody can write to, not even root.
const QString kReadOnlyFolder = QStringLiteral("/proc/sys");

const QString kDeleteIt = "delete it, and the next thumbnail makes it anew";

class CheckDataTest : public CheckTest
{
protected:
    void TearDown() override
    {
        if (!QFileInfo(dataFolder()).isDir() || QFileInfo(dataFolder()).isSymLink())
            QFile::remove(dataFolder());
        CheckTest::TearDown();
    }

    static void makePipe(const QString& path) { ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0); }
};

TEST_F(CheckDataTest, ApostropheInThePathIsTold)
{
    const QString folder = m_folder.filePath("o'brien");
    ASSERT_TRUE(QDir().mkpath(folder));
    m_environment.insert("XDG_DATA_HOME", folder);
    expectFailureOfRequest("FAIL data folder: " + folder +
                           "/KESTRAVO_Thumbnail has an apostrophe in its path, so the cache cannot record any picture: "
                           "set XDG_DATA_HOME to a folder without one");
    EXPECT_TRUE(QDir(folder).isEmpty());
}

TEST_F(CheckDataTest, RelativePathIsNoted)
{
    m_environment.insert("XDG_DATA_HOME", "relative");
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(
        marked(run, "note"),
        QStringList({kNotRegistered,
                     "note data folder: relative/KESTRAVO_Thumbnail is another one for each folder that zrthumb is "
                     "started in: set XDG_DATA_HOME to a whole path"}));
    EXPECT_EQ(run.out.last(), "no problems found");
    EXPECT_FALSE(QFileInfo::exists(m_folder.filePath("relative")));
}

TEST_F(CheckDataTest, DataFolderThatCannotBeMadeIsTold)
{
    m_environment.insert("XDG_DATA_HOME", kReadOnlyFolder);
    expectFailureOfRequest(QString("FAIL data folder: %1/KESTRAVO_Thumbnail cannot be made: %1 is read-only: get the "
                                   "right to write there")
                               .arg(kReadOnlyFolder));
}

TEST_F(CheckDataTest, ReadOnlyDataFolderIsTold)
{
    ASSERT_TRUE(QFile::link(kReadOnlyFolder, dataFolder()));
    expectFailureOfRequest("FAIL data folder: " + dataFolder() + " is read-only: get the right to write there");
}

TEST_F(CheckDataTest, ReadOnlyPictureFolderIsTold)
{
    createDataFolder();
    ASSERT_TRUE(QFile::link(kReadOnlyFolder, path("thumbnailImage")));
    expectFailureOfRequest("FAIL data folder: " + path("thumbnailImage") +
                           " is read-only: get the right to write there");
}

TEST_F(CheckDataTest, FileInPlaceOfTheDataFolderIsTold)
{
    writeFile(dataFolder(), "");
    expectFailureOfRequest("FAIL data folder: " + dataFolder() +
                           " is a file, where a folder should be: move it elsewhere");
    EXPECT_TRUE(QFileInfo(dataFolder()).isFile());
}

TEST_F(CheckDataTest, FileInPlaceOfThePictureFolderIsTold)
{
    createDataFolder();
    writeFile(path("thumbnailImage"), "the user's");
    expectFailureOfRequest("FAIL data folder: " + path("thumbnailImage") +
                           " is a file, where a folder should be: move it elsewhere");
    EXPECT_EQ(readFile(path("thumbnailImage")), "the user's");
}

TEST_F(CheckDataTest, LooseLinkInPlaceOfTheDataFolderIsTold)
{
    ASSERT_TRUE(QFile::link(m_folder.filePath("gone"), dataFolder()));
    expectFailureOfRequest("FAIL data folder: " + dataFolder() +
                           " is a link to a folder that is not there: make that folder, or delete the link");
}

TEST_F(CheckDataTest, LogThatCannotBeWrittenIsTold)
{
    createDataFolder();
    ASSERT_TRUE(QDir().mkdir(defaultLogPath()));
    expectOnlyFailure("FAIL log: " + defaultLogPath() +
                      " is a folder, where a file should be: move it elsewhere; until then nothing tells why a "
                      "thumbnail is missing");
    EXPECT_TRUE(QFileInfo(defaultLogPath()).isDir());
}

TEST_F(CheckDataTest, PipeInPlaceOfTheLogIsTold)
{
    createDataFolder();
    makePipe(defaultLogPath());
    expectOnlyFailure("FAIL log: " + defaultLogPath() +
                      " is a pipe or a device, where a file should be: delete it; until then nothing tells why a "
                      "thumbnail is missing");
    EXPECT_TRUE(QFileInfo::exists(defaultLogPath()));
}

TEST_F(CheckDataTest, PipeInPlaceOfTheDatabaseIsTold)
{
    createDataFolder();
    makePipe(defaultDatabasePath());
    expectFailureOfRequest("FAIL database: " + defaultDatabasePath() +
                           " is a pipe or a device, where a file should be: delete it");
    EXPECT_TRUE(QFileInfo::exists(defaultDatabasePath()));
}

TEST_F(CheckDataTest, FolderInPlaceOfTheDatabaseIsTold)
{
    ASSERT_TRUE(QDir().mkpath(defaultDatabasePath()));
    expectFailureOfRequest("FAIL database: " + defaultDatabasePath() +
                           " is a folder, where a file should be: move it elsewhere");
}

TEST_F(CheckDataTest, FullDeviceInPlaceOfTheDatabaseIsTold)
{
    createDataFolder();
    ASSERT_TRUE(QFile::link("/dev/full", defaultDatabasePath()));
    expectFailureOfRequest("FAIL database: " + defaultDatabasePath() +
                           " is a pipe or a device, where a file should be: delete it");
}

TEST_F(CheckDataTest, EmptyDatabaseIsWell)
{
    createDataFolder();
    writeFile(defaultDatabasePath(), "");
    EXPECT_TRUE(check().out.contains("ok   database: pictures in it: 0"));
}

// Whatever the checks do not know is told by the request. A link to itself is nothing that exists.
TEST_F(CheckDataTest, FailureThatNoCheckKnowsIsToldByTheRequest)
{
    createDataFolder();
    ASSERT_TRUE(QFile::link(defaultDatabasePath(), defaultDatabasePath()));
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    ASSERT_EQ(marked(run, "FAIL").size(), 1);
    EXPECT_TRUE(marked(run, "FAIL").first().startsWith("FAIL sample slice file: no thumbnail: "));
    EXPECT_TRUE(run.out.contains("       110 database no open")) << run.out.join('\n').toStdString();
    EXPECT_EQ(run.out.last(), "1 problem found");
}

struct DatabaseState {
    const char* name;
    std::function<void()> make;
    const char* line;
};

std::ostream& operator<<(std::ostream& out, const DatabaseState& row)
{
    return out << row.name;
}

constexpr char kForeign[] =
    " has a table with other columns, by another program or version: move it elsewhere, and the "
    "next thumbnail makes it anew";
constexpr char kDamaged[] = " is damaged";

const DatabaseState kDatabaseStates[] = {
    {"Garbage", [] { writeFile(defaultDatabasePath(), QByteArray(4096, 'x')); }, kDamaged},
    {"Header", [] { overwriteDatabase(0, 16); }, kDamaged},
    {"TablePage", [] { overwriteDatabase(4096, 4096); }, kDamaged},
    {"IndexPage", [] { overwriteDatabase(8192, 4096); }, kDamaged},
    {"Cut", [] { ASSERT_TRUE(QFile::resize(defaultDatabasePath(), 4096)); }, kDamaged},
    {"OtherColumns", [] { makeForeignDatabase({"create table thumbnail (a text, b int, c text, d int, e int)"}); },
     kForeign},
    {"OlderTable",
     [] {
         makeForeignDatabase(
             {"create table thumbnail (thumPath text, thumTime int, filePath text unique, fileTime int)"});
     },
     kForeign},
    {"OtherOrder",
     [] {
         makeForeignDatabase(
             {"create table thumbnail (filePath text unique, thumPath text, thumTime int, fileTime int, "
              "fileSize int)"});
     },
     kForeign},
    {"View", [] { makeForeignDatabase({"create view thumbnail as select 1 as thumPath"}); }, kForeign},
};

class CheckDatabaseTest : public CheckDataTest, public ::testing::WithParamInterface<DatabaseState>
{
};

TEST_P(CheckDatabaseTest, IsToldAndLeftAlone)
{
    makeThumbnail();
    GetParam().make();
    const bool isReadable = GetParam().line == kForeign;
    const QByteArray before = readFile(defaultDatabasePath());
    const QStringList rows = isReadable ? snapshot() : QStringList();
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    const QStringList failures = marked(run, "FAIL");
    ASSERT_EQ(failures.size(), 2) << run.out.join('\n').toStdString();
    EXPECT_TRUE(failures[0].startsWith("FAIL database: " + defaultDatabasePath() + GetParam().line))
        << failures[0].toStdString();
    EXPECT_TRUE(isReadable || failures[0].endsWith(kDeleteIt)) << failures[0].toStdString();
    EXPECT_TRUE(failures[1].startsWith("FAIL sample slice file: no thumbnail: ")) << failures[1].toStdString();
    if (isReadable)
        EXPECT_EQ(snapshot(), rows);
    else
        EXPECT_EQ(readFile(defaultDatabasePath()), before);
}

INSTANTIATE_TEST_SUITE_P(Database, CheckDatabaseTest, ::testing::ValuesIn(kDatabaseStates),
                         [](const auto& row) { return std::string(row.param.name); });

// Another program in the middle of its own work with the database. What waits for it must end before CheckWatch loses
// its patience.
class CheckLockedDatabaseTest : public CheckDataTest, public ::testing::WithParamInterface<QStringList>
{
};

TEST_P(CheckLockedDatabaseTest, IsToldInTime)
{
    makeThumbnail();
    QProcess holder;
    holder.start(ZRTHUMB_DATABASE_HOLDER, QStringList{defaultDatabasePath(), "60000"} + GetParam());
    ASSERT_TRUE(holder.waitForReadyRead(kTimeoutMs));
    useFasterClock();
    expectFailureOfRequest("FAIL database: " + defaultDatabasePath() +
                           " is in use by another program for more than 5 seconds: end that program");
    holder.closeWriteChannel();
    ASSERT_TRUE(holder.waitForFinished(kTimeoutMs));
    EXPECT_EQ(check().status, 0);
}

INSTANTIATE_TEST_SUITE_P(Locks, CheckLockedDatabaseTest,
                         ::testing::Values(QStringList{"begin exclusive"}, QStringList{"begin immediate"},
                                           QStringList{"begin", "select * from thumbnail"}));

} // namespace
} // namespace zr::test
