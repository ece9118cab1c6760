// SPDX-License-Identifier: MIT
// What a run and its workers take of the memory. Models leave much of it behind.

#include "tests/reliability/setting.h"
#include "tests/support/child_processes.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/mixed_files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <map>

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

} // namespace
} // namespace zr::test
