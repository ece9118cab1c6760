// SPDX-License-Identifier: MIT
// A run that is interrupted by a signal.

#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/vrx_bytes.h"

#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 60000;

// Their error lines fill the pipe to the test, so the run blocks until the test reads it.
constexpr int kFiles = 3000;
const QString kMissing = QString(200, 'm');

class InterruptionTest : public DataFolderTest
{
protected:
    // Starts a run in which only the first file exists, and waits until that one is done.
    void start(const QStringList& options, const QString& launcher = {})
    {
        samples::VrxParts parts;
        parts.preview.width = 2;
        parts.preview.height = 2;
        parts.preview.data = samples::wordBytes({0xF800, 0xF800, 0xF800, 0xF800});
        writeFile(m_folder.filePath("a.vrx"), samples::vrxBytes(parts));
        QStringList words = {QStringLiteral(ZRTHUMB_PROGRAM)};
        if (!launcher.isEmpty())
            words.prepend(launcher);
        words += options + QStringList{"a.vrx"};
        for (int i = 1; i < kFiles; ++i)
            words.append(kMissing);
        m_process.setWorkingDirectory(m_folder.path());
        m_process.start(words.first(), words.mid(1));
        ASSERT_TRUE(m_process.waitForReadyRead(kTimeoutMs));
    }

    void send(int signal) { ASSERT_EQ(::kill(static_cast<pid_t>(m_process.processId()), signal), 0); }

    // Waits until the program has handled the signal, so that another one would end it.
    void awaitHandled(int signal)
    {
        const QString status = QStringLiteral("/proc/%1/status").arg(m_process.processId());
        QElapsedTimer timer;
        timer.start();
        for (qulonglong caught = ~0ULL; (caught >> (signal - 1) & 1U) != 0;) {
            ASSERT_LT(timer.elapsed(), kTimeoutMs);
            const QByteArray text = readFile(status);
            caught = text.mid(text.indexOf("SigCgt:") + 7, 18).trimmed().toULongLong(nullptr, 16);
        }
    }

    QStringList errorLines()
    {
        EXPECT_TRUE(m_process.waitForFinished(kTimeoutMs));
        return QString::fromLocal8Bit(m_process.readAllStandardError()).split('\n', Qt::SkipEmptyParts);
    }

    QTemporaryDir m_folder;
    QProcess m_process;
};

TEST_F(InterruptionTest, RunEndsAfterTheCurrentFileAndSavesItsSheet)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        SCOPED_TRACE(signal);
        start({"--sheet", "sheet.png"});
        m_process.setReadChannel(QProcess::StandardError);
        ASSERT_TRUE(m_process.waitForReadyRead(kTimeoutMs)); // some files have failed
        m_process.setReadChannel(QProcess::StandardOutput);
        send(signal);
        QStringList lines = errorLines();
        EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(m_process.exitCode(), 128 + signal);

        ASSERT_GE(lines.size(), 2);
        const QString last = lines.takeLast();
        const int done = lines.size() + 1; // the first file has no line here
        EXPECT_LT(done, kFiles);
        EXPECT_EQ(last, QStringLiteral("zrthumb: interrupted after %1 of %2 files").arg(done).arg(kFiles));
        EXPECT_EQ(lines.filter("no such file").size(), done - 1);

        int cells = 0;
        for (const QString& name : QDir(m_folder.path()).entryList({"sheet*.png"}, QDir::Files, QDir::Time)) {
            const QImage page(m_folder.filePath(name));
            for (int y = 12; y < page.height(); y += 234) {
                for (int x = 12; x < page.width(); x += 212)
                    cells += page.pixel(x, y) != qRgb(250, 250, 250);
            }
            ASSERT_TRUE(QFile::remove(m_folder.filePath(name)));
        }
        EXPECT_EQ(cells, done);
    }
}

TEST_F(InterruptionTest, SecondSignalEndsTheRunAtOnce)
{
    // The run blocks on its second file, since nobody reads the error line.
    const QByteArray pipe = QFile::encodeName(m_folder.filePath("pipe"));
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    const int end = open(pipe.constData(), O_RDWR | O_NONBLOCK);
    while (write(end, "", 1) == 1) {
    }
    m_process.setStandardErrorFile(m_folder.filePath("pipe"), QIODevice::Append);
    const std::pair<int, int> cases[] = {{SIGINT, SIGINT}, {SIGINT, SIGTERM}, {SIGTERM, SIGINT}, {SIGHUP, SIGTERM}};
    for (const auto& [first, second] : cases) {
        SCOPED_TRACE(std::to_string(first) + " and " + std::to_string(second));
        start({});
        send(first);
        awaitHandled(first);
        EXPECT_FALSE(m_process.waitForFinished(100)) << "the first signal must not end it";
        send(second);
        EXPECT_TRUE(m_process.waitForFinished(kTimeoutMs));
        EXPECT_EQ(m_process.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(m_process.exitCode(), second);
    }
    close(end);
}

TEST_F(InterruptionTest, IgnoredSignalsStayIgnored)
{
    start({}, "nohup");
    send(SIGHUP);
    send(SIGINT);
    errorLines();
    EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(m_process.exitCode(), 128 + SIGINT);
}

} // namespace
} // namespace zr::test
