// SPDX-License-Identifier: MIT
// How long the model loaders take from a file in the page cache to finished chunks, as multiples of reading the same
// file with read(2) into one reused buffer, and how much memory they need beyond their chunks. For OBJ files the
// reference is tinyobjloader, since how fast a processor copies a file says little about how fast it reads numbers. The
// table at the end shows the ratios; the exit status says whether all are within their limits.

#include "bench/best_time_reporter.h"
#include "bench/mesh_models.h"
#include "bench/model_loads.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <vector>

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

namespace
{

using namespace zr::bench;

constexpr int kSizes[] = {10000, 100000, 1000000};
constexpr std::size_t kReadBytes = 1 << 20;

// One format at one size.
struct Case {
    const ModelFormat* format;
    QString path;
    qint64 chunkBytes;
    qint64 extraBytes; ///< peak memory beyond the chunks
    std::string name;

    std::string baseline() const { return name + "/read"; }
    std::string peer() const { return name + "/tinyobjloader"; }
    std::string load() const { return name + "/load"; }
};

void readWhole(const QString& path)
{
    static std::vector<char> buffer(kReadBytes);
    const int file = open(path.toLocal8Bit().constData(), O_RDONLY | O_CLOEXEC);
    while (read(file, buffer.data(), buffer.size()) > 0)
        benchmark::DoNotOptimize(buffer.data());
    close(file);
}

// Makes the next chunk use fresh memory, as in a host that loads one model, and not what the previous model left.
void returnFreedMemory()
{
    malloc_trim(0);
}

// The chunks' memory, fresh as a loader gets it, filled once.
void fillChunks(qint64 bytes)
{
    void* const memory = std::malloc(static_cast<std::size_t>(bytes));
    std::memset(memory, 1, static_cast<std::size_t>(bytes));
    benchmark::DoNotOptimize(memory);
    std::free(memory);
}

std::deque<Case> makeCases(const QTemporaryDir& folder)
{
    std::deque<Case> cases;
    for (const ModelFormat& format : modelFormats()) {
        for (const int triangles : kSizes) {
            const std::string name = std::string(format.name) + "/" + std::to_string(triangles);
            const QString path = folder.filePath(QString::fromStdString(name).replace('/', '-').replace(' ', '-'));
            if (format.write(path, triangles) == 0)
                std::abort();
            const LoadMemory memory = measureLoad(format, path);
            cases.push_back({&format, path, memory.chunkBytes, memory.peakBytes - memory.chunkBytes, name});
        }
    }
    return cases;
}

void registerCase(const Case& test)
{
    constexpr int kRepetitions = 5;
    const auto configure = [](benchmark::internal::Benchmark* bench) {
        bench->Unit(benchmark::kMillisecond)->Repetitions(kRepetitions)->MinTime(0.1);
    };
    configure(benchmark::RegisterBenchmark(test.baseline().c_str(), [&test](benchmark::State& state) {
        for ([[maybe_unused]] const auto _ : state) {
            // Leaves the processor's caches as the loader finds them: after other work, not after the same read.
            state.PauseTiming();
            test.format->load(test.path);
            returnFreedMemory();
            state.ResumeTiming();
            readWhole(test.path);
            if (test.format->countsMemset)
                fillChunks(test.chunkBytes);
        }
    }));
    configure(benchmark::RegisterBenchmark(test.load().c_str(), [&test](benchmark::State& state) {
        for ([[maybe_unused]] const auto _ : state) {
            state.PauseTiming();
            returnFreedMemory();
            state.ResumeTiming();
            benchmark::DoNotOptimize(test.format->load(test.path));
        }
    }));
    if (test.format->loadWithPeer) {
        configure(benchmark::RegisterBenchmark(test.peer().c_str(), [&test](benchmark::State& state) {
            for ([[maybe_unused]] const auto _ : state) {
                state.PauseTiming();
                returnFreedMemory();
                state.ResumeTiming();
                test.format->loadWithPeer(test.path);
            }
        }));
    }
}

bool printTable(const std::deque<Case>& cases, const BestTimeReporter& reporter)
{
    constexpr double kMiB = 1 << 20;
    bool allWithin = true;
    std::printf("\n%-20s %9s %9s %7s %6s %9s %7s %6s %10s %6s\n", "model", "read ms", "load ms", "ratio", "limit",
                "peer ms", "ratio", "least", "extra MiB", "limit");
    for (const Case& test : cases) {
        const double base = reporter.bestSeconds(test.baseline());
        const double load = reporter.bestSeconds(test.load());
        if (base == 0.0 || load == 0.0)
            continue;
        const double peer = reporter.bestSeconds(test.peer());
        const ModelFormat& format = *test.format;
        const bool within = (format.allowedRatio == 0.0 || load / base <= format.allowedRatio) &&
                            (!format.loadWithPeer || peer / load >= format.leastPeerRatio) &&
                            static_cast<double>(test.extraBytes) <= format.allowedExtraMiB * kMiB;
        std::printf("%-20s %9.2f %9.2f %7.2f %6.1f %9.1f %7.1f %6.1f %10.1f %6.1f%s\n", test.name.c_str(), base * 1e3,
                    load * 1e3, load / base, format.allowedRatio, peer * 1e3, peer / load, format.leastPeerRatio,
                    static_cast<double>(test.extraBytes) / kMiB, format.allowedExtraMiB, within ? "" : "  MISSED");
        allWithin = allWithin && within;
    }
    return allWithin;
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const QTemporaryDir folder;
    const std::deque<Case> cases = makeCases(folder);
    for (const Case& test : cases)
        registerCase(test);
    BestTimeReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return printTable(cases, reporter) ? EXIT_SUCCESS : EXIT_FAILURE;
}
