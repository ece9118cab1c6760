// SPDX-License-Identifier: MIT
// What a run and its workers take of the memory. Models leave much of it behind.

#include "tests/reliability/setting.h"
#include "tests/support/child_processes.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/mixed_files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/stl_bytes.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

#include <unistd.h>

namespace zr::test
{
namespace
{

constexpr qint64 kMegabyte = 1000000;
constexpr qint64 kMaxRunBytes = 60 * kMegabyte;

class BatchMemoryTest : public DataFolderTest
{
protected:
    // The largest memory that the process has had; 0 when it has ended.
    static qint64 peakOf(qint64 process)
    {
        QFile file(QStringLiteral("/proc/%1/status").arg(process));
        if (!file.open(QIODevice::ReadOnly))
            return 0;
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray& line : lines) {
            if (line.startsWith("VmHWM:"))
                return line.mid(6).replace("kB", "").trimmed().toLongLong() * 1024;
        }
        return 0;
    }

    // Runs over the files and notes the peaks.
    void run(const QStringList& arguments)
    {
        QProcess program;
        program.setWorkingDirectory(m_folder.path());
        program.setStandardOutputFile(QProcess::nullDevice());
        program.setStandardErrorFile(QProcess::nullDevice());
        startProgram(program, QStringLiteral(ZRTHUMB_PROGRAM), arguments);
        const qint64 id = program.processId();
        while (!program.waitForFinished(5)) {
            m_runPeak = std::max(m_runPeak, peakOf(id));
            for (const qint64 worker : childrenOf(id))
                m_workerPeaks[worker] = std::max(m_workerPeaks[worker], peakOf(worker));
        }
        EXPECT_LE(program.exitCode(), 1);
    }

    qint64 largestWorker() const
    {
        qint64 largest = 0;
        for (const auto& [worker, peak] : m_workerPeaks)
            largest = std::max(largest, peak);
        return largest;
    }

    QTemporaryDir m_folder;
    qint64 m_runPeak = 0;
    std::map<qint64, qint64> m_workerPeaks;
};

TEST_F(BatchMemoryTest, RunAndWorkersStayWithinTheirLimits)
{
    const int files = setting("ZRTHUMB_BATCH_FILES", 200);
    makeMixedFiles(m_folder.filePath("Models"), files);
    constexpr int kWorkerMegabytes = 160;
    for (const QString& renderer : QStringList{"software", "opengl"}) {
        m_runPeak = 0;
        m_workerPeaks.clear();
        run({"-r", "-q", "-j", "2", "--worker-memory", QString::number(kWorkerMegabytes), "--renderer", renderer,
             "--no-cache", "--output-dir", renderer, "Models"});
        EXPECT_LT(m_runPeak, kMaxRunBytes) << renderer.toStdString();
        EXPECT_LT(largestWorker(), kWorkerMegabytes * kMegabyte) << renderer.toStdString();
        std::printf("%s: the run took %lld MB, the largest of %zu workers %lld MB\n", qPrintable(renderer),
                    m_runPeak / kMegabyte, m_workerPeaks.size(), largestWorker() / kMegabyte);
        // With OpenGL, what models leave makes more than two necessary.
        EXPECT_GT(m_workerPeaks.size(), renderer == "opengl" ? 2U : 1U);
    }
}

// Without -j, and too few files for it otherwise. In one process, a dozen takes all there is.
TEST_F(BatchMemoryTest, ManyLargeModelsFitIntoLittleMemory)
{
    constexpr int kModels = 40;
    constexpr std::size_t kTriangles = 100000;
    const auto gear = samples::gear();
    std::vector<samples::ModelTriangle> triangles;
    while (triangles.size() < kTriangles)
        triangles.insert(triangles.end(), gear.begin(), gear.end());
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("Models"));
    const QString model = writeFile(m_folder.filePath("Models/model.stl"), samples::binaryStlBytes(triangles));
    for (int i = 1; i < kModels; ++i)
        ASSERT_EQ(::link(qPrintable(model), qPrintable(m_folder.filePath(QString("Models/model%1.stl").arg(i)))), 0);
    QProcess shell;
    shell.setWorkingDirectory(m_folder.path());
    startProgram(shell, "sh", {"-c", "ulimit -v 1200000; exec \"$0\" -r --renderer opengl Models", ZRTHUMB_PROGRAM});
    ASSERT_TRUE(shell.waitForFinished(300000));
    EXPECT_EQ(shell.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().constData();
    EXPECT_EQ(shell.readAllStandardOutput().count('\n'), kModels);
}

} // namespace
} // namespace zr::test
