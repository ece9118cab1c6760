// SPDX-License-Identifier: MIT
#include "render/rasteriser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace zr::test
{
namespace
{

constexpr int kSide = 16;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Place {
    float x, y; ///< pixels from the lower left corner
    float z = 0.0F;
};

using Triangle = std::array<Place, 3>;
using Triangles = std::vector<Triangle>;

// Takes pixels to clip space.
QMatrix4x4 pixelMatrix(int side)
{
    QMatrix4x4 matrix;
    matrix.translate(-1.0F, -1.0F, 0.0F);
    matrix.scale(2.0F / static_cast<float>(side), 2.0F / static_cast<float>(side), 1.0F);
    return matrix;
}

std::vector<float> floatsOf(const Triangles& triangles)
{
    std::vector<float> floats;
    for (const Triangle& triangle : triangles)
        for (const Place& place : triangle)
            floats.insert(floats.end(), {place.x, place.y, place.z});
    return floats;
}

// The samples of a picture, row by row from the bottom up.
struct Picture {
    std::vector<Sample> samples;
    int side;

    int count(quint32 triangle) const
    {
        return static_cast<int>(std::count_if(samples.begin(), samples.end(), [=](const Sample& sample) {
            return !sample.isNothing() && sample.triangle == triangle;
        }));
    }

    int countNothing() const
    {
        return static_cast<int>(
            std::count_if(samples.begin(), samples.end(), [](const Sample& sample) { return sample.isNothing(); }));
    }

    // Empty when there is none.
    std::optional<quint32> triangleAt(int column, int row) const
    {
        const Sample& sample = samples.at(static_cast<std::size_t>(row) * static_cast<std::size_t>(side) +
                                          static_cast<std::size_t>(column));
        return sample.isNothing() ? std::nullopt : std::optional(sample.triangle);
    }
};

// Drawn in bands of `bandRows` rows of pixels.
Picture drawn(const std::vector<float>& floats, const QMatrix4x4& matrix, int side, int samples, int bandRows)
{
    const SamplePattern pattern(samples);
    SampleBand band(pattern, side, bandRows);
    Rasteriser rasteriser(ClipTransform(matrix, QMatrix4x4()), side, pattern, band);
    Picture result{{}, side};
    for (int begin = 0; begin < side; begin = band.end()) {
        band.start(begin, std::min(begin + bandRows, side));
        rasteriser.draw(floats.data(), 0, static_cast<quint32>(floats.size() / 9));
        for (int row = begin * samples; row < band.end() * samples; ++row)
            for (int column = 0; column < side; ++column)
                result.samples.push_back(band.sample(column, row));
    }
    return result;
}

Picture drawn(const Triangles& triangles, int samples = 1, int side = kSide)
{
    return drawn(floatsOf(triangles), pixelMatrix(side), side, samples, side);
}

struct CoverageCase {
    const char* name;
    Triangle triangle;
    int pixels;
};

class CoverageTest : public ::testing::TestWithParam<CoverageCase>
{
};

TEST_P(CoverageTest, PixelsWhoseCentresAreInside)
{
    EXPECT_EQ(drawn({GetParam().triangle}).count(0), GetParam().pixels);
}

INSTANTIATE_TEST_SUITE_P(
    Triangles, CoverageTest,
    ::testing::Values(CoverageCase{"Half", {{{0, 0}, {16, 0}, {0, 16}}}, 120},
                      CoverageCase{"Whole", {{{0, 0}, {40, 0}, {0, 40}}}, 256},
                      CoverageCase{"Back", {{{0, 0}, {0, 16}, {16, 0}}}, 0},
                      CoverageCase{"Line", {{{0, 0}, {8, 8}, {16, 16}}}, 0},
                      CoverageCase{"Point", {{{3.5F, 3.5F}, {3.5F, 3.5F}, {3.5F, 3.5F}}}, 0},
                      CoverageCase{"BetweenCentres", {{{3.6F, 3.6F}, {4.4F, 3.6F}, {3.6F, 4.4F}}}, 0},
                      CoverageCase{"AroundOneCentre", {{{3.3F, 3.3F}, {3.9F, 3.3F}, {3.3F, 3.9F}}}, 1},
                      // Left and lower sides belong to it, right and upper ones do not.
                      CoverageCase{"CentresOnSidesLowerLeft", {{{2.5F, 2.5F}, {6.5F, 2.5F}, {2.5F, 6.5F}}}, 10},
                      CoverageCase{"CentresOnSidesUpperRight", {{{6.5F, 2.5F}, {6.5F, 6.5F}, {2.5F, 6.5F}}}, 6},
                      CoverageCase{"SmallerThanAStep", {{{3.5F, 3.5F}, {3.501F, 3.5F}, {3.5F, 3.501F}}}, 0},
                      CoverageCase{"OutsideLeft", {{{-9, 0}, {-1, 0}, {-9, 16}}}, 0},
                      CoverageCase{"AcrossTheLeft", {{{-8, 0}, {8, 0}, {-8, 16}}}, 28},
                      CoverageCase{"InFrontOfTheNearPlane", {{{0, 0, -2}, {16, 0, -2}, {0, 16, -2}}}, 0},
                      CoverageCase{"BeyondTheFarPlane", {{{0, 0, 2}, {16, 0, 2}, {0, 16, 2}}}, 0},
                      CoverageCase{"Nan", {{{0, 0}, {16, kNaN}, {0, 16}}}, 0},
                      CoverageCase{"Infinite", {{{0, 0}, {kInfinity, 0}, {0, 16}}}, 0},
                      CoverageCase{"Huge", {{{-3e38F, -3e38F}, {3e38F, -3e38F}, {0, 3e38F}}}, 256}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RasteriserTest, NearestWinsAndOfEqualsTheFirst)
{
    const auto at = [](float z) { return Triangle{{{0, 0, z}, {16, 0, z}, {0, 16, z}}}; };
    EXPECT_EQ(drawn({at(0.5F), at(0.25F), at(0.75F)}).triangleAt(2, 2), 1U);
    EXPECT_EQ(drawn({at(0.5F), at(0.5F)}).triangleAt(2, 2), 0U);
    // On the far plane, where the background is.
    EXPECT_EQ(drawn({at(1.0F)}).triangleAt(2, 2), std::nullopt);
}

TEST(RasteriserTest, TrianglesGoThroughEachOther)
{
    const Triangle rising{{{0, 0, 0}, {16, 0, 1}, {0, 16, 0}}};
    const Triangle level{{{0, 0, 0.5F}, {16, 0, 0.5F}, {0, 16, 0.5F}}};
    const auto samples = drawn({level, rising});
    EXPECT_EQ(samples.triangleAt(6, 0), 1U);
    EXPECT_EQ(samples.triangleAt(9, 0), 0U);
}

// Triangles that share sides and corners leave no hole and share no sample, wherever their corners are.
class FanTest : public ::testing::TestWithParam<int>
{
};

TEST_P(FanTest, EachSampleBelongsToOneTriangle)
{
    const int samples = GetParam();
    std::mt19937 random(1);
    std::uniform_real_distribution<float> place(1.0F, 15.0F);
    for (int round = 0; round < 200; ++round) {
        const Place hub{place(random), place(random)};
        const std::array<Place, 8> rim = {{{0, 0}, {8, 0}, {16, 0}, {16, 8}, {16, 16}, {8, 16}, {0, 16}, {0, 8}}};
        Triangles fan;
        for (std::size_t i = 0; i < rim.size(); ++i)
            fan.push_back({hub, rim[i], rim[(i + 1) % rim.size()]});
        std::map<quint32, int> alone;
        for (std::size_t i = 0; i < fan.size(); ++i)
            alone[static_cast<quint32>(i)] = drawn({fan[i]}, samples).count(0);
        const auto together = drawn(fan, samples);
        EXPECT_EQ(together.countNothing(), 0);
        for (const auto& [triangle, pixels] : alone)
            EXPECT_EQ(together.count(triangle), pixels);
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, FanTest, ::testing::Values(1, 2, 4, 8, 16));

// Where the corners lie, and how far from each other at most, in steps.
struct ExtentCase {
    const char* name;
    int extent;
};

class ExtentTest : public ::testing::TestWithParam<std::tuple<ExtentCase, int>>
{
};

struct Steps {
    int x, y;
};

// By whole numbers, for each sample on its own.
bool holds(const std::array<Steps, 3>& triangle, int x, int y)
{
    for (std::size_t i = 0; i < 3; ++i) {
        const Steps from = triangle.at(i), to = triangle.at((i + 1) % 3);
        const int dx = to.x - from.x, dy = to.y - from.y;
        const qint64 product = qint64{dx} * (y - from.y) - qint64{dy} * (x - from.x);
        const bool belongs = dy < 0 || (dy == 0 && dx > 0);
        if (product < 0 || (product == 0 && !belongs))
            return false;
    }
    return true;
}

// Triangles of all sizes, which are drawn in different ways, show in the samples that they hold and in no other one.
// Their corners often lie on the same line and on samples.
TEST_P(ExtentTest, ShowsInTheSamplesThatItHolds)
{
    constexpr int side = 48;
    const auto& [row, samples] = GetParam();
    const SamplePattern pattern(samples);
    const int extent = row.extent;
    std::mt19937 random(7);
    const auto upTo = [&](int most) { return std::uniform_int_distribution<int>(0, most)(random); };
    int hits = 0;
    for (int round = 0; round < 200; ++round) {
        const int grain = round % 3 == 0 ? 16 : 1;
        const Steps corner{upTo(side * kSubpixels - extent), upTo(side * kSubpixels - extent)};
        std::array<Steps, 3> triangle{};
        Triangle places{};
        for (std::size_t i = 0; i < 3; ++i) {
            triangle.at(i) = {(corner.x + upTo(extent)) / grain * grain, (corner.y + upTo(extent)) / grain * grain};
            places.at(i) = {static_cast<float>(triangle.at(i).x) / kSubpixels,
                            static_cast<float>(triangle.at(i).y) / kSubpixels};
        }
        const Picture picture = drawn({places}, samples, side);
        for (int y = 0; y < side * samples; ++y)
            for (int x = 0; x < side; ++x) {
                const bool isHeld = holds(triangle, pattern.xOf(x, y), pattern.yOf(y));
                ASSERT_EQ(picture.triangleAt(x, y).has_value(), isHeld) << round << ": " << x << ", " << y;
                hits += isHeld ? 1 : 0;
            }
    }
    EXPECT_GT(hits, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Triangles, ExtentTest,
    ::testing::Combine(::testing::Values(ExtentCase{"LessThanAPixel", 200}, ExtentCase{"APixel", 256},
                                         ExtentCase{"SomePixels", 1500}, ExtentCase{"SmallestLarge", 4200},
                                         ExtentCase{"WholePicture", 48 * 256}),
                       ::testing::Values(1, 2, 4, 8, 16)),
    [](const auto& row) { return std::string(std::get<0>(row.param).name) + std::to_string(std::get<1>(row.param)); });

TEST(RasteriserTest, EachSampleOfAPixelHasARowAndAColumnOfItsOwn)
{
    for (const int samples : {1, 2, 4, 8, 16}) {
        const SamplePattern pattern(samples);
        std::vector<bool> columns(static_cast<std::size_t>(samples));
        for (int row = 0; row < samples; ++row) {
            const int width = kSubpixels / samples;
            EXPECT_EQ(pattern.yOf(row), row * width + width / 2);
            const int x = pattern.xOf(0, row);
            EXPECT_EQ(x % width, width / 2);
            EXPECT_FALSE(columns.at(static_cast<std::size_t>(x / width)));
            columns.at(static_cast<std::size_t>(x / width)) = true;
        }
    }
}

TEST(RasteriserTest, BandsShowTheWholePicture)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<float> place(-4.0F, 20.0F);
    std::vector<float> floats(std::size_t{9} * 60);
    for (std::size_t i = 0; i < floats.size(); ++i)
        floats[i] = i % 3 == 2 ? place(random) / 20.0F : place(random);
    const Picture whole = drawn(floats, pixelMatrix(kSide), kSide, 4, kSide);
    EXPECT_LT(whole.countNothing(), static_cast<int>(whole.samples.size()) / 2);
    for (const int rows : {1, 2, 3, 8}) {
        const Picture inBands = drawn(floats, pixelMatrix(kSide), kSide, 4, rows);
        ASSERT_EQ(inBands.samples.size(), whole.samples.size());
        for (std::size_t i = 0; i < whole.samples.size(); ++i)
            EXPECT_EQ(inBands.samples[i].bits(), whole.samples[i].bits());
    }
}

// What is cut off at the picture's sides changes nothing within.
TEST(RasteriserTest, CornersOutsideShowWhatIsInside)
{
    const auto inside = drawn({{{{0, 0}, {16, 0}, {0, 16}}}, {{{16, 0}, {16, 16}, {0, 16}}}});
    const auto across = drawn({{{{-16, -16, 0}, {48, -16, 0}, {-16, 48, 0}}}});
    EXPECT_EQ(inside.countNothing(), 0);
    EXPECT_EQ(across.countNothing(), 0);
}

TEST(RasteriserTest, WhatIsBehindTheEyeIsNotSeen)
{
    QMatrix4x4 perspective;
    perspective.perspective(90.0F, 1.0F, 0.01F, 1000.0F);
    const std::vector<float> behind = {-1, -1, 1, 1, -1, 1, 0, 1, 1};
    EXPECT_EQ(drawn(behind, perspective, kSide, 1, kSide).count(0), 0);
    // A floor that goes on below the eye and behind it fills the lower half.
    const std::vector<float> floor = {-1000, -1, 500, 1000, -1, 500, 0, -1, -900};
    const auto samples = drawn(floor, perspective, kSide, 1, kSide);
    for (int x = 0; x < kSide; ++x) {
        EXPECT_EQ(samples.triangleAt(x, 0), 0U);
        EXPECT_EQ(samples.triangleAt(x, 6), 0U);
        EXPECT_EQ(samples.triangleAt(x, 8), std::nullopt);
    }
}

TEST(RasteriserTest, MatricesThatAreNotFiniteShowNothing)
{
    for (const float number : {kNaN, kInfinity, -kInfinity}) {
        QMatrix4x4 matrix = pixelMatrix(kSide);
        matrix(0, 0) = number;
        EXPECT_EQ(drawn(floatsOf({{{{0, 0}, {16, 0}, {0, 16}}}}), matrix, kSide, 1, kSide).count(0), 0);
    }
    EXPECT_EQ(drawn(floatsOf({{{{0, 0}, {16, 0}, {0, 16}}}}), QMatrix4x4() * 0.0F, kSide, 1, kSide).count(0), 0);
}

} // namespace
} // namespace zr::test
