// SPDX-License-Identifier: MIT
// How long the decoding of a preview of max size takes, relative to the cost of its canvas alone: filling it with the
// background and scaling it down. The last line is the ratio of the two; the exit status says whether it is below
// kAllowedRatio.

#include "bench/best_time_reporter.h"
#include "readers/slice/run_length_preview.h"
#include "readers/slice/thumbnail_canvas.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>

namespace
{

using namespace zr;

constexpr int kSidePx = PreviewBlock::kMaxSidePx;
constexpr double kAllowedRatio = 3.0;
constexpr char kBaseline[] = "FillAndScale";
constexpr char kSinglePixels[] = "DecodeSinglePixelWords";

PreviewBlock emptyBlock()
{
    PreviewBlock block;
    block.head.width = kSidePx;
    block.head.height = kSidePx;
    return block;
}

void appendWord(PreviewBlock& block, quint32 word)
{
    block.src_RGB_Buffer.push_back(static_cast<uchar>(word & 0xFF));
    block.src_RGB_Buffer.push_back(static_cast<uchar>(word >> 8 & 0xFF));
}

// Every pixel a word of its own: noise, the worst case.
PreviewBlock singlePixelWords()
{
    constexpr quint32 kRunFlag = 0x0020;
    PreviewBlock block = emptyBlock();
    std::mt19937 random(1);
    for (int i = 0; i < kSidePx * kSidePx; ++i)
        appendWord(block, static_cast<quint32>(random()) & 0xFFFF & ~kRunFlag);
    return block;
}

// Runs of the length of those in a real preview.
PreviewBlock runWords()
{
    constexpr int kRunPixels = 20;
    constexpr quint32 kColours[] = {0x0020, 0xF820, 0x1234};
    PreviewBlock block = emptyBlock();
    for (int i = 0; i < kSidePx * kSidePx / kRunPixels; ++i) {
        appendWord(block, kColours[i % 3]);
        appendWord(block, kRunPixels - 1);
    }
    return block;
}

void fillAndScale(benchmark::State& state)
{
    for ([[maybe_unused]] const auto _ : state) {
        QImage canvas(kSidePx, kSidePx, QImage::Format_RGB888);
        canvas.fill(previewBackground(PreviewShading::Dark));
        benchmark::DoNotOptimize(fittedToThumbnail(canvas));
    }
}

void decodeAndScale(benchmark::State& state, PreviewBlock (*makeBlock)())
{
    const PreviewBlock block = makeBlock();
    for ([[maybe_unused]] const auto _ : state)
        benchmark::DoNotOptimize(fittedToThumbnail(decodeRunLengthPreview(block, PreviewShading::Dark, 0)));
}

void configure(benchmark::internal::Benchmark* bench)
{
    constexpr int kRepetitions = 5;
    bench->Unit(benchmark::kMillisecond)->Repetitions(kRepetitions);
}

BENCHMARK(fillAndScale)->Apply(configure)->Name(kBaseline);
BENCHMARK_CAPTURE(decodeAndScale, singles, singlePixelWords)->Apply(configure)->Name(kSinglePixels);
BENCHMARK_CAPTURE(decodeAndScale, runs, runWords)->Apply(configure)->Name("DecodeRunWords");

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    zr::bench::BestTimeReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double ratio = reporter.bestSeconds(kSinglePixels) / reporter.bestSeconds(kBaseline);
    std::printf("ratio %s / %s: %.2f (at most %.1f)\n", kSinglePixels, kBaseline, ratio, kAllowedRatio);
    return ratio <= kAllowedRatio ? 0 : 1;
}
