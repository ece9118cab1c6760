// SPDX-License-Identifier: MIT
#include "readers/mesh/memory_probe.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#ifdef Q_OS_LINUX
#include <QElapsedTimer>
#include <QFile>
#endif

namespace zr::test
{
namespace
{

constexpr quint64 kMinBytes = 1 << 20;
[[maybe_unused]] constexpr quint64 kSmallChange = 32 << 20;

TEST(MemoryProbeTest, ThisMachineHasSomeMemoryLeft)
{
    const MemoryFigures figures = systemMemory();
    EXPECT_GT(figures.availableBytes, kMinBytes);
    EXPECT_LT(figures.loadPercent, 100U);
}

int queries = 0;

MemoryFigures shortFromThirdQueryOn()
{
    return {kMinBytes, ++queries < 3 ? 89U : 90U};
}

TEST(MemoryProbeTest, WatchAsksATestsProbeAfterEachTriangle)
{
    MemoryWatch watch(shortFromThirdQueryOn);
    EXPECT_FALSE(watch.isShort());
    EXPECT_FALSE(watch.isShort());
    EXPECT_TRUE(watch.isShort());
    EXPECT_TRUE(watch.isShort());
    EXPECT_EQ(queries, 4);
}

TEST(MemoryProbeTest, WatchOfThisMachineCostsNothing)
{
    MemoryWatch watch(systemMemory);
    for (int triangle = 0; triangle < 3 * kTrianglesPerReading; ++triangle)
        ASSERT_FALSE(watch.isShort());
}

#ifdef Q_OS_LINUX

MemoryFigures kernelFigures()
{
    QFile meminfo(QStringLiteral("/proc/meminfo"));
    EXPECT_TRUE(meminfo.open(QIODevice::ReadOnly));
    return memoryFiguresFromMeminfo(meminfo.readAll().constData()).value_or(MemoryFigures{});
}

// Within five seconds, since other programs take and give memory between the two queries.
bool followsTheKernel()
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 5000) {
        const MemoryFigures expected = kernelFigures();
        const MemoryFigures figures = systemMemory();
        const quint64 difference = expected.availableBytes > figures.availableBytes
                                       ? expected.availableBytes - figures.availableBytes
                                       : figures.availableBytes - expected.availableBytes;
        if (difference < kSmallChange && qAbs(int(expected.loadPercent) - int(figures.loadPercent)) <= 1)
            return true;
    }
    return false;
}

TEST(MemoryProbeTest, FiguresFollowThoseOfTheKernel)
{
    EXPECT_TRUE(followsTheKernel());
    const std::vector<char> taken(8 * kSmallChange, 'x');
    EXPECT_TRUE(followsTheKernel());
}

TEST(MemoryProbeTest, LoadCountsThePageCacheAsAvailable)
{
    const auto figures = memoryFiguresFromMeminfo("MemTotal:        1000 kB\nMemFree:           10 kB\n"
                                                  "MemAvailable:     400 kB\nCached:           500 kB\n");
    ASSERT_TRUE(figures);
    EXPECT_EQ(figures->availableBytes, 400U * 1024);
    EXPECT_EQ(figures->loadPercent, 60U);
}

TEST(MemoryProbeTest, LoadIsRoundedDown)
{
    EXPECT_EQ(memoryFiguresFromMeminfo("MemTotal: 1000 kB\nMemAvailable: 101 kB\n")->loadPercent, 89U);
    EXPECT_EQ(memoryFiguresFromMeminfo("MemTotal: 1000 kB\nMemAvailable: 100 kB\n")->loadPercent, 90U);
    EXPECT_EQ(memoryFiguresFromMeminfo("MemTotal: 1000 kB\nMemAvailable: 0 kB\n")->loadPercent, 100U);
}

TEST(MemoryProbeTest, TextWithoutTheFiguresGivesNone)
{
    for (const char* text : {"", "MemTotal: 1000 kB\n", "MemAvailable: 10 kB\n", "MemTotal: 0 kB\nMemAvailable: 0 kB\n",
                             "MemTotal: 10 kB\nMemAvailable: 11 kB\n"})
        EXPECT_FALSE(memoryFiguresFromMeminfo(text)) << text;
}

#endif

} // namespace
} // namespace zr::test
