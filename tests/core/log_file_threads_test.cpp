// SPDX-License-Identifier: MIT
#include "core/log_file.h"

#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <atomic>
#include <map>
#include <memory>
#include <thread>
#include <vector>

namespace zr::test
{
namespace
{

constexpr int kWriters = 8;
constexpr int kEnders = 2;
constexpr int kRequestsPerWriter = 40;
constexpr int kLinesPerRequest = 5;

class LogFileThreadsTest : public DataFolderTest
{
};

void writeRequest(int writer, int request)
{
    LogFile::instance()->init(QString());
    for (int line = 0; line < kLinesPerRequest; ++line)
        logLine(writer, QStringLiteral("%1/%2").arg(request).arg(line));
}

// The lines of each writer, in file order.
std::map<int, QStringList> linesByWriter()
{
    std::map<int, QStringList> lines;
    const QStringList messages = logMessages();
    for (const QString& message : messages) {
        const int blank = message.indexOf(QLatin1Char(' '));
        lines[message.left(blank).toInt()].append(message.mid(blank + 1));
    }
    return lines;
}

void expectEveryLineOnceInOrder()
{
    QStringList expected;
    for (int request = 0; request < kRequestsPerWriter; ++request) {
        for (int line = 0; line < kLinesPerRequest; ++line)
            expected.append(QStringLiteral("%1/%2").arg(request).arg(line));
    }
    auto lines = linesByWriter();
    ASSERT_EQ(lines.size(), std::size_t{kWriters});
    for (int writer = 0; writer < kWriters; ++writer)
        EXPECT_EQ(lines[writer], expected) << "writer " << writer;
}

TEST_F(LogFileThreadsTest, NoLineIsLostWhileOtherThreadsEndTheInstance)
{
    createDataFolder();
    std::atomic<bool> done{false};
    std::vector<std::thread> enders;
    enders.reserve(kEnders);
    for (int i = 0; i < kEnders; ++i) {
        enders.emplace_back([&done] {
            while (!done)
                LogFile::end();
        });
    }
    std::vector<std::thread> writers;
    writers.reserve(kWriters);
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([writer] {
            for (int request = 0; request < kRequestsPerWriter; ++request)
                writeRequest(writer, request);
        });
    }
    for (auto& thread : writers)
        thread.join();
    done = true;
    for (auto& thread : enders)
        thread.join();
    expectEveryLineOnceInOrder();
}

TEST_F(LogFileThreadsTest, NoLineIsLostWhenEachRequestEndsTheInstance)
{
    createDataFolder();
    std::vector<std::thread> writers;
    writers.reserve(kWriters);
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([writer] {
            for (int request = 0; request < kRequestsPerWriter; ++request) {
                writeRequest(writer, request);
                LogFile::end();
            }
        });
    }
    for (auto& thread : writers)
        thread.join();
    expectEveryLineOnceInOrder();
}

// What a thread leaves is freed once, and before other threads get its memory.
TEST_F(LogFileThreadsTest, ThreadsMayEndWithTheirInstance)
{
    constexpr int kShortThreads = 2000;
    constexpr std::size_t kMaxBytes = 64;
    std::atomic<bool> done{false};
    // Allocates and frees small blocks of memory, filled with bytes that are not an address.
    std::thread neighbour([&done] {
        std::vector<std::unique_ptr<std::vector<char>>> blocks(256);
        for (std::size_t i = 0; !done; ++i)
            blocks[i % blocks.size()] = std::make_unique<std::vector<char>>(8 + i % kMaxBytes, '\x11');
    });
    for (int i = 0; i < kShortThreads; ++i) {
        std::thread([i] {
            LogFile::instance()->init(QString());
            if (i % 2 == 0)
                LogFile::end();
        }).join();
    }
    done = true;
    neighbour.join();
    EXPECT_NE(LogFile::instance(), nullptr);
}

} // namespace
} // namespace zr::test
