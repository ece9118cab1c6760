// SPDX-License-Identifier: MIT
#include "host/failure_reason.h"

#include "cache/thumbnail_database.h"
#include "core/data_location.h"
#include "core/job/thumbnail_job.h"
#include "core/log_file.h"
#include "host/failure_keys.h"
#include "host/log_tail.h"
#include "readers/reader_table.h"
#include "tests/host/plain_words.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <set>

namespace zr::test
{
namespace
{

class FailureReasonTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        ASSERT_TRUE(QDir().mkpath(thumbnailImageFolder()));
    }

    QString source(const QString& name) const { return writeFile(m_folder.filePath(name), "x"); }

    // The messages read back after logging the line between the lines that every failure has.
    static QStringList logWith(const FailureLine& line, const QString& path)
    {
        restartLog();
        const LogTail tail;
        logLine(37, "in 2 " + path);
        logLine(63, "app after");
        logLine(84, " throw ");
        logLine(line.number, textOf(line, path) + (line.rest == FailureLine::Rest::Anything ? "rest" : ""));
        logLine(29, "fileReadLess");
        throwAway([] { throwKey(kNoPicture); });
        logLine(kJobFailed);
        return tail.messagesOf(path);
    }

    static QString reasonOf(const QString& path, const QStringList& messages)
    {
        return failureOf(path, messages).reason;
    }

    template <typename Action>
    static void throwAway(Action action)
    {
        EXPECT_THROW(action(), QString);
    }

    QTemporaryDir m_folder;
};

TEST_F(FailureReasonTest, EachLogLineOfEachReaderHasItsReason)
{
    for (const QString& suffix : supportedSuffixes()) {
        const QString path = source("a." + suffix);
        EXPECT_FALSE(readerFailures(suffix).empty()) << suffix.toStdString();
        std::set<QString> lines;
        for (const FailureLine& line : readerFailures(suffix)) {
            const QString text = QString::number(line.number) + ' ' + textOf(line, path);
            SCOPED_TRACE(suffix.toStdString() + ": " + text.toStdString());
            const Failure failure = failureOf(path, logWith(line, path));
            EXPECT_EQ(failure.reason, line.reason);
            EXPECT_EQ(failure.key, line.key ? line.key : key::kReader);
            EXPECT_NE(failure.key, "");
            EXPECT_TRUE(lines.insert(text).second) << "two failures log this line";
            expectPlainWords(line.reason);
        }
    }
    EXPECT_TRUE(readerFailures("txt").empty());
}

// Failures of a reader without a key of their own share the key "readerErr".
TEST_F(FailureReasonTest, KeysTellKindsOfFailuresApart)
{
    const QStringList notSaved = {"69  throw ", "73 getImage False"};
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("folder.stl"));
    writeFile(m_folder.filePath("empty.stl"), "");
    const struct {
        const char* name;
        QStringList messages;
        const char* key;
    } cases[] = {
        {"missing.stl", {}, "noSuchFile"},
        {"folder.stl", {}, "isFolder"},
        {"empty.stl", {}, "fileIsEmpty"},
        {"a.txt", {}, "fileIsNotSupport"},
        {"a.vrx", {"29 DlpHead_t read less\n%1", "30  throw "}, "fileReadLess"},
        {"a.vrx", {"72 There is something wrong with the document\n%1", "73  throw "}, "filePrevErr"},
        {"a.stl", {"97  throw "}, "fileReadLess"},
        {"a.stl", {"156  throw "}, "memOut"},
        {"a.stl", {"61  throw "}, "fileIsCanNoRender"},
        {"a.stl", {"170  throw size  1 2 3"}, "modelSizeIsErr"},
        {"a.stl", {"184 ---------------renderListZero-----------------"}, "renderListZero"},
        {"a.stl", {"200 opengl version is not valid"}, "not has opengl context"},
        {"a.slc", {"198 mem out err"}, "memOutErr"},
        {"a.slc", {"130  throw "}, "fileHeadErr"},
        {"a.vrx", {"63 app after", "84  throw "}, "readerErr"},
        {"a.vrx", {"84  throw ", "73 getImage False"}, "readerErr"},
        {"a.vrx", {"84  throw ", "65  throw ", "73 getImage False"}, "prevImageGetErr"},
        {"a.vrx", {}, "readerErr"},
        {"a.vrx", QStringList{"84  throw "} + notSaved, "pushDataErr"},
        {"a.vrx", QStringList{"110 database no open"} + notSaved, "pushDataErr"},
        {"it's.vrx", QStringList{"84  throw "} + notSaved, "cacheErr"},
    };
    for (const auto& row : cases) {
        const QString path = m_folder.filePath(row.name);
        if (QFileInfo(path).suffix() != "stl" || QString(row.name) == "a.stl")
            source(row.name);
        QStringList messages = row.messages;
        messages.replaceInStrings("%1", path);
        EXPECT_EQ(failureOf(path, messages).key, row.key) << row.name << ' ' << messages.join(" | ").toStdString();
    }
}

TEST_F(FailureReasonTest, CauseComesBeforeItsConsequences)
{
    const QString path = source("a.stl");
    const std::pair<QStringList, const char*> cases[] = {
        {{"200 opengl version is not valid", "279  throw ", "97  throw ",
          "184 ---------------renderListZero-----------------"},
         "the file ends before all of its triangles, or is no STL file"},
        {{"115 Builder function failed\tvertexShaderErr", "184 ---------------renderListZero-----------------"},
         "there is nothing to draw: the model is empty, or the file is damaged"},
        {{"279  throw ", "115 Builder function failed\tvertexShaderErr"},
         "models need OpenGL, which fails or is too old: 'zrthumb --check' tells more"},
    };
    for (const auto& [lines, reason] : cases)
        EXPECT_EQ(reasonOf(path, lines + QStringList({"65  throw ", "73 getImage False"})), reason);
}

// Lines of other processes can come between a request's lines.
TEST_F(FailureReasonTest, LinesForOtherFilesAreIgnored)
{
    const QString path = source("a.vrx");
    const QStringList foreign = {"29 DlpHead_t read less\n/other.vrx", "97  throw ", "53 There is something wrong"};
    const QStringList own = {"72 There is something wrong with the document\n" + path, "73  throw ", "29 filePrevErr",
                             "65  throw ", "73 getImage False"};
    EXPECT_EQ(reasonOf(path, foreign + own + foreign), "the file's preview is damaged: its size is impossible");
}

TEST_F(FailureReasonTest, PathsThatTheLogCannotEncodeAreFound)
{
    const QString path = source(QString::fromUtf8("\xD0\xB4\xE2\x88\x9E.vrx"));
    const FailureLine line = readerFailures("vrx").at(1);
    const QStringList messages = logWith(line, path);
    EXPECT_EQ(messages.first(), "63 app after");
    EXPECT_EQ(reasonOf(path, messages), line.reason);
}

TEST_F(FailureReasonTest, JobThatEndsSilentlyMetDamageOrRanOutOfMemory)
{
    const QString path = source("a.vrx");
    const char reason[] = "the file is damaged, or there is not enough memory for it";
    EXPECT_EQ(reasonOf(path, {"63 app after", "84  throw "}), reason);
    EXPECT_EQ(reasonOf(path, {"84  throw ", "65  throw ", "73 getImage False"}), reason);
}

TEST_F(FailureReasonTest, CacheFaultsAreReportedIfNothingElseIsFound)
{
    const QString path = source("a.vrx");
    const QStringList notSaved = {"69  throw ", "73 getImage False"};
    EXPECT_EQ(reasonOf(path, QStringList{"84  throw "} + notSaved),
              "the picture could not be saved in the cache: another program may have its database locked; try again");
    EXPECT_EQ(reasonOf(path, QStringList{"110 database no open", "84  throw "} + notSaved),
              "the database of the cache cannot be opened");
    EXPECT_EQ(reasonOf(path, QStringList{"106 database create faild", "84  throw "} + notSaved),
              "the database of the cache cannot be used");
}

TEST_F(FailureReasonTest, MissingLogIsReported)
{
    EXPECT_EQ(reasonOf(source("a.vrx"), {}),
              "the reason is not known, since nothing could be written to the log, " + defaultLogPath());
    EXPECT_EQ(reasonOf(source("a.txt"), {}), "this kind of file is not supported");
    EXPECT_EQ(reasonOf(m_folder.filePath("missing.vrx"), {}), "no such file");
}

TEST_F(FailureReasonTest, UnknownFailureRefersToTheLog)
{
    EXPECT_EQ(reasonOf(source("a.vrx"), {"73 getImage False"}), "no picture came back; see " + defaultLogPath());
}

TEST_F(FailureReasonTest, TailHoldsTheMessagesOfTheLastRequestForThePath)
{
    const QString path = source("a.vrx");
    restartLog();
    logLine(37, "in 2 " + path);
    logLine(1, "before the tail");
    const LogTail tail;
    logLine(37, "in 2 " + path);
    logLine(2, "earlier attempt");
    logLine(37, "in 2 " + path);
    logLine(3, "two\nlines");
    logLine(4, " throw ");
    EXPECT_EQ(tail.messagesOf(path), QStringList({"3 two\nlines", "4  throw "}));
}

TEST_F(FailureReasonTest, TailOfADeletedLogIsTheWholeNewOne)
{
    const QString path = source("a.vrx");
    restartLog();
    for (int i = 0; i < 10; ++i)
        logLine(1, "long");
    const LogTail tail;
    restartLog();
    logLine(37, "in 2 " + path);
    logLine(2, "new");
    EXPECT_EQ(tail.messagesOf(path), QStringList({"2 new"}));
}

} // namespace
} // namespace zr::test
