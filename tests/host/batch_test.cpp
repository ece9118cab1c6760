// SPDX-License-Identifier: MIT
// Runs in worker processes, whose results must be those of a run in one process.

#include "tests/host/zrthumb_fixture.h"
#include "tests/support/child_processes.h"
#include "tests/support/mixed_files.h"
#include "tests/support/qt_printers.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace zr::test
{
namespace
{

constexpr int kFiles = 90; // so few are read without workers
constexpr int kTimeoutMs = 120000;

class BatchTest : public ZrthumbTest
{
protected:
    void SetUp() override
    {
        ZrthumbTest::SetUp();
        m_names = makeMixedFiles(m_folder.filePath("Models"), kFiles);
    }

    // Relative path and bytes of all PNGs below the folder.
    static QMap<QString, QByteArray> pngsBelow(const QString& folder)
    {
        QMap<QString, QByteArray> pngs;
        QDirIterator each(folder, {"*.png"}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (each.hasNext()) {
            const QString path = each.next();
            pngs.insert(QDir(folder).relativeFilePath(path), readFile(path));
        }
        return pngs;
    }

    // Lines of JSON without what differs between runs. Each must be an object with the keys of its kind.
    static QList<QJsonObject> resultsIn(const QStringList& lines)
    {
        QList<QJsonObject> results;
        for (const QString& line : lines) {
            QJsonParseError error;
            QJsonObject result = QJsonDocument::fromJson(line.toUtf8(), &error).object();
            EXPECT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
            if (!result.contains("error")) {
                EXPECT_GT(result.take("milliseconds").toDouble(), 0) << line.toStdString();
                result["picture"] = QFileInfo(result["picture"].toString()).fileName();
            }
            results += result;
        }
        return results;
    }

    QStringList m_names;
};

// In the cache, files of equal names share a PNG, which shows the last one.
TEST_F(BatchTest, ResultsAndCacheAreThoseOfOneProcess)
{
    const ProgramRun here = run({"-r", "--json", "Models"});
    const auto pngsHere = pngsBelow(thumbnailImageFolder());
    SetUp();
    const ProgramRun workers = run({"-r", "--json", "-j", "3", "Models"});
    EXPECT_EQ(here.err, QStringList());
    EXPECT_EQ(workers.err, QStringList());
    EXPECT_EQ(workers.status, here.status);
    EXPECT_EQ(workers.out.size(), kFiles);
    EXPECT_EQ(resultsIn(workers.out), resultsIn(here.out));
    EXPECT_GT(pngsHere.size(), kFiles / 2);
    EXPECT_EQ(pngsBelow(thumbnailImageFolder()), pngsHere);
    for (const QJsonObject& result : resultsIn(run({"-r", "--json", "-j", "3", "Models"}).out))
        EXPECT_TRUE(result.contains("error") || result["cached"].toBool()) << result["file"].toString().toStdString();
}

TEST_F(BatchTest, LinesAreThoseOfOneProcess)
{
    const ProgramRun here = run({"-r", "Models"});
    SetUp();
    const ProgramRun workers = run({"-r", "-j", "4", "Models"});
    EXPECT_EQ(workers.out, here.out);
    EXPECT_EQ(workers.err, here.err);
    EXPECT_EQ(workers.status, 1);
    EXPECT_GT(workers.err.size(), 2);
}

TEST_F(BatchTest, OutputsAreThoseOfOneProcess)
{
    const QStringList options{"-r", "-s", "64", "--output-dir"};
    const ProgramRun here = run(options + QStringList{"here", "Models"});
    const auto pngsHere = pngsBelow(m_folder.filePath("here"));
    EXPECT_GT(pngsHere.size(), kFiles / 2);
    for (const bool isNew : {true, false}) {
        // The second time, the pictures are in the cache.
        const ProgramRun workers = run(options + QStringList{"workers", "-j", "3", "--refresh", "Models"});
        EXPECT_EQ(workers.status, here.status);
        EXPECT_EQ(pngsBelow(m_folder.filePath("workers")), pngsHere) << isNew;
    }
}

TEST_F(BatchTest, SheetIsThatOfOneProcess)
{
    run({"-r", "--sheet", "here.png", "Models"});
    run({"-r", "--sheet", "workers.png", "-j", "3", "Models"});
    EXPECT_GT(readFile(m_folder.filePath("here.png")).size(), 10000);
    EXPECT_EQ(readFile(m_folder.filePath("workers.png")), readFile(m_folder.filePath("here.png")));
}

TEST_F(BatchTest, FewFilesAndManyProcesses)
{
    source("a.vrx");
    const ProgramRun one = run({"-j", "16", "a.vrx", "missing.stl"});
    EXPECT_EQ(one.out, QStringList(png("a.vrxvrx.png")));
    EXPECT_EQ(one.err, QStringList("zrthumb: missing.stl: no thumbnail: no such file"));
    EXPECT_EQ(one.status, 1);
    QDir(m_folder.path()).mkdir("empty");
    const ProgramRun none = run({"-j", "2", "-r", "empty"});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, QStringList());
}

// Nobody but a run starts workers.
TEST_F(BatchTest, WorkerOnItsOwnDoesNothing)
{
    for (const QByteArray& input : {QByteArray(), QByteArray("a"), QByteArray("\0\0\0\2ab", 6),
                                    QByteArray("\xff\xff\xff\xff") + QByteArray(100, 'a')}) {
        QProcess worker;
        worker.setWorkingDirectory(m_folder.path());
        startProgram(worker, QStringLiteral(ZRTHUMB_PROGRAM), {"--worker"});
        worker.write(input);
        worker.closeWriteChannel();
        ASSERT_TRUE(worker.waitForFinished(kTimeoutMs));
        EXPECT_EQ(worker.exitCode(), 2);
        EXPECT_EQ(worker.readAllStandardOutput(), "");
        EXPECT_EQ(worker.readAllStandardError().trimmed(), "zrthumb: --worker is for the processes that -j starts");
    }
}

// Of a run with many files, of which each may be killed with the worker that reads it.
TEST_F(BatchTest, KilledWorkersCostOneFileEach)
{
    constexpr int kKills = 5;
    QProcess program;
    program.setWorkingDirectory(m_folder.path());
    startProgram(program, QStringLiteral(ZRTHUMB_PROGRAM), {"-r", "--json", "-j", "2", "Models"});
    int kills = 0;
    QElapsedTimer timer;
    timer.start();
    while (kills < kKills && timer.elapsed() < kTimeoutMs && program.state() == QProcess::Running) {
        const auto workers = childrenOf(program.processId());
        if (!workers.empty() && program.waitForReadyRead(1000)) {
            killProcess(*workers.begin());
            ++kills;
        }
    }
    ASSERT_TRUE(program.state() == QProcess::NotRunning || program.waitForFinished(kTimeoutMs));
    EXPECT_EQ(program.exitCode(), 1);
    EXPECT_GT(kills, 0);
    const auto lines = QString::fromUtf8(program.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lines.size(), kFiles);
    int crashed = 0;
    for (const QJsonObject& result : resultsIn(lines)) {
        if (result["error"].toString() == "readerCrashed") {
            ++crashed;
            EXPECT_EQ(result["reason"].toString(), "the reader crashed");
        }
    }
    EXPECT_LE(crashed, kills);
    // What has failed so is made by the next run.
    const ProgramRun second = run({"-r", "--json", "-j", "2", "Models"});
    for (const QJsonObject& result : resultsIn(second.out))
        EXPECT_NE(result["error"].toString(), "readerCrashed");
}

} // namespace
} // namespace zr::test
