// SPDX-License-Identifier: MIT
#include "tests/host/terminal_run.h"

#include <QFile>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zr::test
{
namespace
{

winsize sizeOf(int columns)
{
    winsize size{};
    size.ws_row = 24;
    size.ws_col = static_cast<unsigned short>(columns);
    return size;
}

constexpr std::chrono::seconds kMaxWait(30);

// The bytes that were written to a terminal.
class Received
{
public:
    // Reads until no process has the terminal open any more.
    void readAll(int terminal)
    {
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = read(terminal, buffer.data(), buffer.size())) > 0;) {
            const std::lock_guard<std::mutex> guard(m_mutex);
            m_bytes.append(buffer.data(), static_cast<int>(count));
            m_changed.notify_one();
        }
    }

    void waitFor(const QByteArray& text)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const auto hasCome = [&] { return m_bytes.indexOf(text, m_waitedFor) >= 0; };
        EXPECT_TRUE(m_changed.wait_for(lock, kMaxWait, hasCome)) << text.toStdString();
        m_waitedFor = m_bytes.indexOf(text, m_waitedFor) + static_cast<int>(text.size());
    }

    const QByteArray& bytes() const { return m_bytes; }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    QByteArray m_bytes;
    int m_waitedFor = 0;
};

std::vector<char*> pointersTo(std::vector<QByteArray>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

TerminalRun runOnTerminal(const QString& program, const QStringList& arguments, const QString& folder,
                          const QProcessEnvironment& environment, int columns, const QString& outFile)
{
    std::vector<QByteArray> words = {QFile::encodeName(program)};
    for (const QString& argument : arguments)
        words.push_back(QFile::encodeName(argument));
    std::vector<QByteArray> variables;
    for (const QString& variable : environment.toStringList())
        variables.push_back(variable.toLocal8Bit());
    const std::vector<char*> argv = pointersTo(words);
    const std::vector<char*> envp = pointersTo(variables);
    const QByteArray folderName = QFile::encodeName(folder);
    const QByteArray outName = QFile::encodeName(outFile);

    int terminal = -1;
    winsize size = sizeOf(columns);
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) {
        const int out = outName.isEmpty() ? STDOUT_FILENO : open(outName.constData(), O_WRONLY | O_CREAT, 0600);
        if (chdir(folderName.constData()) == 0 && dup2(out, STDOUT_FILENO) >= 0)
            execve(argv[0], argv.data(), envp.data());
        _exit(127);
    }
    EXPECT_GT(child, 0);
    Received received;
    received.readAll(terminal);
    TerminalRun run;
    run.bytes = received.bytes();
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    close(terminal);
    return run;
}

QByteArray onTerminal(int columns, const QByteArray& term, const std::function<void(const WaitFor& waitFor)>& work)
{
    int terminal = -1;
    int line = -1;
    const winsize size = sizeOf(columns);
    EXPECT_EQ(openpty(&terminal, &line, nullptr, nullptr, &size), 0);
    const QByteArray formerTerm = qgetenv("TERM");
    const int formerStderr = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    qputenv("TERM", term);
    dup2(line, STDERR_FILENO);
    close(line);

    Received received;
    std::thread reading([&received, terminal] { received.readAll(terminal); });
    work([&received](const QByteArray& text) { received.waitFor(text); });
    std::fflush(stderr);
    dup2(formerStderr, STDERR_FILENO); // closes the terminal, which ends the reading
    reading.join();
    close(formerStderr);
    close(terminal);
    qputenv("TERM", formerTerm);
    return received.bytes();
}

} // namespace zr::test
