// SPDX-License-Identifier: MIT
// Several threads of one host make requests at once, each in an apartment with objects of its own.

#include "tests/shell/server_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QElapsedTimer>

#include <atomic>
#include <numeric>
#include <thread>

namespace zr::test
{
namespace
{

constexpr int kThreads = 4;
constexpr qint64 kDurationMs = 10000; // and each file at least once

struct Source {
    QString path;
    QImage picture;
};

class ApartmentsTest : public ServerTest
{
protected:
    // One file of every format for each thread, with names of their own since equal names share a cached picture.
    std::vector<Source> writeSources(int thread) const
    {
        std::vector<Source> sources;
        sources.reserve(samples::sampleFiles().size());
        for (const samples::SampleFile& sample : samples::sampleFiles()) {
            const QString name = QString("%1/%1-%2").arg(thread).arg(QLatin1String(sample.name));
            sources.push_back({writeSource(name, sample.make()), {}});
        }
        return sources;
    }

    // A request from start to end, as the file browser's threads make it.
    bool requestGives(const Source& source) const
    {
        ComPtr<IPersistFile> object;
        ComPtr<IExtractImage> extractor;
        if (FAILED(m_server.factory()->CreateInstance(nullptr, IID_PPV_ARGS(object.GetAddressOf()))) ||
            load(object, source.path) != S_OK || FAILED(object.As(&extractor)))
            return false;
        wchar_t location[MAX_PATH] = {};
        DWORD priority = 0;
        const SIZE size = {256, 256};
        DWORD flags = 0;
        return extractor->GetLocation(location, MAX_PATH, &priority, &size, 32, &flags) == S_OK &&
               extract(object) == source.picture;
    }
};

// A source that looks older than at the last request is read anew.
void makeStale(const QString& path)
{
    moveTimeStamp(path, -1);
}

TEST_F(ApartmentsTest, RequestsOfSeveralThreadsSucceedAndAreLogged)
{
    std::vector<std::vector<Source>> sources;
    sources.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        sources.push_back(writeSources(i));
    // Qt is started by a thread that ends before the others begin, as a host's threads may do.
    std::thread([this, &sources] {
        const Apartment apartment;
        for (auto& ofThread : sources) {
            for (Source& source : ofThread)
                source.picture = request(source.path);
        }
    }).join();
    restartLog();

    std::atomic<int> failures{0};
    std::vector<int> requests(kThreads, 0);
    QElapsedTimer timer;
    timer.start();
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            const Apartment apartment;
            const auto& own = sources[static_cast<std::size_t>(i)];
            int& count = requests[static_cast<std::size_t>(i)];
            const auto files = static_cast<int>(own.size());
            while (timer.elapsed() < kDurationMs || count < files) {
                const Source& source = own[static_cast<std::size_t>(count % files)];
                if ((count + count / files) % 3 == 0)
                    makeStale(source.path);
                if (!requestGives(source))
                    ++failures;
                ++count;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(failures, 0);
    const QStringList messages = logMessages();
    for (int i = 0; i < kThreads; ++i) {
        const int count = requests[static_cast<std::size_t>(i)];
        int logged = 0;
        for (const Source& source : sources[static_cast<std::size_t>(i)])
            logged += messages.count("37 in 2 " + source.path);
        EXPECT_EQ(logged, count) << "thread " << i;
    }
    EXPECT_EQ(messages.count("63 app after"), std::accumulate(requests.begin(), requests.end(), 0));
    EXPECT_EQ(messages.count("61 app start"), 0);
}

} // namespace
} // namespace zr::test
