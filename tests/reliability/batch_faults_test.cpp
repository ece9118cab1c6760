// SPDX-License-Identifier: MIT
// Runs in worker processes that are killed, interrupted or cannot be started.

#include "tests/reliability/setting.h"
#include "tests/support/child_processes.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/mixed_files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <functional>
#include <random>

#include <unistd.h>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 300000;

// Sanitizers take ten times as long.
#ifdef __SANITIZE_ADDRESS__
constexpr int kKills = 15;
#else
constexpr int kKills = 100;
#endif

// A process in a group of its own, as a shell with a terminal starts its commands.
class GroupLeader : public QProcess
{
public:
    pid_t id() const { return static_cast<pid_t>(processId()); }

protected:
    void setupChildProcess() override { setpgid(0, 0); }
};

class BatchFaultsTest : public DataFolderTest
{
protected:
    void makeFiles(int count) { m_names = makeMixedFiles(m_folder.filePath("Models"), count); }

    void start(QProcess& program, const QStringList& arguments) const
    {
        program.setWorkingDirectory(m_folder.path());
        startProgram(program, QStringLiteral(ZRTHUMB_PROGRAM), arguments);
    }

    // Each line as an object, by its file.
    static QMap<QString, QJsonObject> resultsOf(const QByteArray& lines)
    {
        QMap<QString, QJsonObject> results;
        for (const QByteArray& line : lines.split('\n')) {
            if (line.isEmpty())
                continue;
            const QJsonObject result = QJsonDocument::fromJson(line).object();
            EXPECT_FALSE(results.contains(result["file"].toString())) << line.constData();
            results.insert(result["file"].toString(), result);
        }
        return results;
    }

    static int count(const QMap<QString, QJsonObject>& results,
                     const std::function<bool(const QJsonObject&)>& isCounted)
    {
        return static_cast<int>(std::count_if(results.cbegin(), results.cend(), isCounted));
    }

    QTemporaryDir m_folder;
    QStringList m_names;
};

bool awaited(const std::function<bool()>& happens)
{
    QElapsedTimer timer;
    timer.start();
    while (!happens()) {
        if (timer.elapsed() > kTimeoutMs)
            return false;
        usleep(2000);
    }
    return true;
}

// Enough of what a run prints that all its workers are at work.
QByteArray firstLines(QProcess& program)
{
    QByteArray lines;
    EXPECT_TRUE(awaited([&] {
        program.waitForReadyRead(10);
        lines += program.readAllStandardOutput();
        return lines.count('\n') >= 20;
    }));
    return lines;
}

bool hasCrashed(const QJsonObject& result)
{
    return result["error"].toString() == "readerCrashed";
}

bool failed(const QJsonObject& result)
{
    return result.contains("error");
}

TEST_F(BatchFaultsTest, EachOfManyKillsCostsAtMostOneFile)
{
    const int kills = setting("ZRTHUMB_BATCH_KILLS", kKills);
    makeFiles(20 * kills);
    QProcess whole;
    start(whole, {"-r", "--json", "--no-cache", "--output-dir", "whole", "-j", "2", "Models"});
    ASSERT_TRUE(whole.waitForFinished(kTimeoutMs));
    const auto expected = resultsOf(whole.readAllStandardOutput());

    QProcess program;
    start(program, {"-r", "--json", "--no-cache", "--output-dir", "killed", "-j", "2", "Models"});
    std::mt19937 random(std::random_device{}());
    int killed = 0;
    while (killed < kills && program.state() == QProcess::Running) {
        program.waitForReadyRead(static_cast<int>(random() % 40));
        const auto workers = childrenOf(program.processId());
        if (workers.empty())
            continue;
        killProcess(*std::next(workers.begin(), static_cast<long>(random() % workers.size())));
        ++killed;
    }
    ASSERT_TRUE(program.state() == QProcess::NotRunning || program.waitForFinished(kTimeoutMs));
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_EQ(killed, kills);
    const auto results = resultsOf(program.readAllStandardOutput());
    EXPECT_EQ(results.keys(), expected.keys());
    for (const QString& file : results.keys()) {
        const QString png = file.mid(6) + ".png";
        if (hasCrashed(results[file]))
            continue;
        EXPECT_EQ(failed(results[file]), failed(expected[file])) << file.toStdString();
        EXPECT_EQ(results[file]["reason"], expected[file]["reason"]) << file.toStdString();
        EXPECT_TRUE(failed(results[file]) ||
                    readFile(m_folder.filePath("killed" + png)) == readFile(m_folder.filePath("whole" + png)))
            << file.toStdString();
    }
    const int crashed = count(results, hasCrashed);
    EXPECT_LE(crashed, kills);
    EXPECT_GT(crashed, 0);
    std::printf("%d kills cost %d of %d files\n", killed, crashed, results.size());
}

TEST_F(BatchFaultsTest, InterruptedRunIsGoneOnWith)
{
    makeFiles(400);
    const QStringList arguments{"-r", "--json", "--no-cache", "--output-dir", "out", "-j", "2", "Models"};
    GroupLeader program;
    start(program, arguments);
    QByteArray lines = firstLines(program);
    // As Ctrl+C does it: to the run and its workers.
    ASSERT_EQ(::kill(-program.id(), SIGINT), 0);
    ASSERT_TRUE(program.waitForFinished(kTimeoutMs));
    lines += program.readAllStandardOutput();
    EXPECT_EQ(program.exitCode(), 128 + SIGINT);
    const auto first = resultsOf(lines);
    EXPECT_LT(first.size(), 400);
    EXPECT_EQ(count(first, hasCrashed), 0);
    EXPECT_EQ(QString::fromUtf8(program.readAllStandardError()),
              QString("zrthumb: interrupted after %1 of 400 files\n").arg(first.size()));

    QProcess again;
    start(again, arguments);
    ASSERT_TRUE(again.waitForFinished(kTimeoutMs));
    const auto second = resultsOf(again.readAllStandardOutput());
    EXPECT_EQ(second.size(), 400);
    for (const QString& file : second.keys())
        EXPECT_TRUE(failed(second[file]) || second[file]["cached"].toBool() == first.contains(file))
            << file.toStdString();
}

// One of two workers stands still, and dies after the interruption: the other has gone on with later files.
TEST_F(BatchFaultsTest, InterruptedRunReportsAllThatIsDone)
{
    makeFiles(400);
    const auto hasPicture = [this](const QString& name) {
        return QFile::exists(m_folder.filePath("out/" + name + ".png"));
    };
    const auto countPictures = [&] {
        return static_cast<int>(std::count_if(m_names.cbegin(), m_names.cend(), hasPicture));
    };
    QProcess program;
    start(program, {"-r", "--json", "--no-cache", "--output-dir", "out", "-j", "2", "Models"});
    const QByteArray lines = firstLines(program);
    const auto workers = childrenOf(program.processId());
    ASSERT_EQ(workers.size(), 2U);
    ASSERT_EQ(::kill(static_cast<pid_t>(*workers.begin()), SIGSTOP), 0);
    const int done = countPictures();
    ASSERT_TRUE(awaited([&] { return countPictures() >= done + 10; }));
    ASSERT_EQ(::kill(static_cast<pid_t>(program.processId()), SIGINT), 0);
    QThread::msleep(500);
    killProcess(*workers.begin());
    ASSERT_TRUE(program.waitForFinished(kTimeoutMs));
    EXPECT_EQ(program.exitCode(), 128 + SIGINT);
    const auto results = resultsOf(lines + program.readAllStandardOutput());
    EXPECT_LT(results.size(), 400);
    EXPECT_EQ(count(results, hasCrashed), 1);
    for (const QString& name : m_names)
        EXPECT_TRUE(!hasPicture(name) || results.contains("Models/" + name)) << name.toStdString();
}

TEST_F(BatchFaultsTest, WorkersEndWithTheirRun)
{
    makeFiles(400);
    for (const int signal : {SIGKILL, SIGTERM}) {
        QProcess program;
        start(program, {"-r", "--json", "--no-cache", "--output-dir", QString::number(signal), "-j", "3", "Models"});
        ASSERT_TRUE(program.waitForReadyRead(kTimeoutMs));
        const auto workers = childrenOf(program.processId());
        EXPECT_EQ(workers.size(), 3U);
        ASSERT_EQ(::kill(static_cast<pid_t>(program.processId()), signal), 0);
        ASSERT_TRUE(program.waitForFinished(kTimeoutMs));
        EXPECT_TRUE(awaited([&] { return std::none_of(workers.begin(), workers.end(), isRunning); })) << signal;
    }
}

// As in "zrthumb ... | head".
TEST_F(BatchFaultsTest, RunEndsWithWhatReadsItsOutput)
{
    makeFiles(400);
    QProcess shell;
    shell.setWorkingDirectory(m_folder.path());
    shell.start("sh", {"-c", QStringLiteral(
                                 "{ %1 -r -j 2 --no-cache --output-dir out Models; echo status $? >&2; } | head -n 3")
                                 .arg(QStringLiteral(ZRTHUMB_PROGRAM))});
    ASSERT_TRUE(shell.waitForFinished(kTimeoutMs));
    EXPECT_EQ(shell.readAllStandardOutput().count('\n'), 3);
    const QByteArray errors = shell.readAllStandardError();
    EXPECT_TRUE(errors.contains("zrthumb: stdout cannot be written: Broken pipe\n")) << errors.constData();
    EXPECT_TRUE(errors.endsWith("status 1\n")) << errors.constData();
    EXPECT_LT(QDir(m_folder.filePath("out")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 20);
}

// A copy of the program, which waits for the names of its files.
class BatchProgramTest : public BatchFaultsTest
{
protected:
    void SetUp() override
    {
        BatchFaultsTest::SetUp();
        makeFiles(30);
        ASSERT_TRUE(QFile::copy(QStringLiteral(ZRTHUMB_PROGRAM), m_copy));
        m_program.setWorkingDirectory(m_folder.path());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LD_LIBRARY_PATH", m_folder.filePath("lib"));
        m_program.setProcessEnvironment(environment);
        startProgram(m_program, m_copy, {"--json", "-j", "2", "--renderer", "software", "--files-from", "-"});
        ASSERT_TRUE(awaited(
            [this] { return readFile(QString("/proc/%1/maps").arg(m_program.processId())).contains("libQt5Core"); }));
    }

    QMap<QString, QJsonObject> giveNames()
    {
        for (const QString& name : m_names)
            m_program.write("Models/" + name.toUtf8() + '\n');
        m_program.closeWriteChannel();
        EXPECT_TRUE(m_program.waitForFinished(kTimeoutMs));
        const auto results = resultsOf(m_program.readAllStandardOutput());
        EXPECT_EQ(results.size(), 30);
        return results;
    }

    // Whatever keeps workers from starting.
    void expectNoWorker(const QString& reason)
    {
        for (const QJsonObject& result : giveNames()) {
            EXPECT_EQ(result["error"].toString(), "noWorker");
            EXPECT_EQ(result["reason"].toString(), "no process to read it could be started: " + reason);
        }
        EXPECT_EQ(m_program.exitCode(), 1);
    }

    const QString m_copy = m_folder.filePath("zrthumb");
    QProcess m_program;
};

TEST_F(BatchProgramTest, EveryFileIsReportedWhenTheProgramMayNotBeRun)
{
    ASSERT_TRUE(QFile::setPermissions(m_copy, QFile::ReadOwner));
    expectNoWorker("execve: Permission denied");
}

// As they do while the system's libraries are updated.
TEST_F(BatchProgramTest, EveryFileIsReportedWhenWorkersEndAtOnce)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("lib"));
    writeFile(m_folder.filePath("lib/libQt5Core.so.5"), "half of it");
    expectNoWorker("it ended at once, with status 127");
}

// Packages are updated in this way: what runs keeps its file, which has no name any more.
TEST_F(BatchProgramTest, RunGoesOnAfterAnUpdateOfItsProgram)
{
    ASSERT_TRUE(QFile::remove(m_copy));
    writeFile(m_copy, "#!/bin/sh\nexit 1\n");
    ASSERT_TRUE(QFile::setPermissions(m_copy, QFile::ReadOwner | QFile::ExeOwner));
    // Hostile ones.
    EXPECT_LE(count(giveNames(), failed), 3);
}

} // namespace
} // namespace zr::test
