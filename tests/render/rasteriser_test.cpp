// SPDX-License-Identifier: MIT
#include "render/rasteriser.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <map>
#include <random>
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

// The samples from the bottom up, drawn in bands of `bandRows` rows.
std::vector<Sample> drawn(const std::vector<float>& floats, const QMatrix4x4& matrix, int samples, int bandRows)
{
    const SamplePattern pattern(samples);
    SampleBand band(kSide, bandRows);
    Rasteriser rasteriser(ClipTransform(matrix, QMatrix4x4()), kSide, pattern, band);
    std::vector<Sample> result;
    for (int begin = 0; begin < kSide * samples; begin += bandRows) {
        band.start(begin, begin + bandRows);
        rasteriser.draw(floats.data(), 0, static_cast<quint32>(floats.size() / 9));
        for (int row = begin; row < begin + bandRows; ++row)
            result.insert(result.end(), band.row(row), band.row(row) + kSide);
    }
    return result;
}

std::vector<Sample> drawn(const Triangles& triangles, int samples = 1)
{
    return drawn(floatsOf(triangles), pixelMatrix(kSide), samples, kSide * samples);
}

int count(const std::vector<Sample>& samples, quint32 triangle)
{
    return static_cast<int>(std::count_if(samples.begin(), samples.end(),
                                          [=](const Sample& sample) { return sample.triangle == triangle; }));
}

quint32 triangleAt(const std::vector<Sample>& samples, int x, int y)
{
    return samples.at(static_cast<std::size_t>(y) * kSide + static_cast<std::size_t>(x)).triangle;
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
    EXPECT_EQ(count(drawn({GetParam().triangle}), 0), GetParam().pixels);
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
    EXPECT_EQ(triangleAt(drawn({at(0.5F), at(0.25F), at(0.75F)}), 2, 2), 1U);
    EXPECT_EQ(triangleAt(drawn({at(0.5F), at(0.5F)}), 2, 2), 0U);
    // On the far plane, where the background is.
    EXPECT_EQ(triangleAt(drawn({at(1.0F)}), 2, 2), Sample::kNothing);
}

TEST(RasteriserTest, TrianglesGoThroughEachOther)
{
    const Triangle rising{{{0, 0, 0}, {16, 0, 1}, {0, 16, 0}}};
    const Triangle level{{{0, 0, 0.5F}, {16, 0, 0.5F}, {0, 16, 0.5F}}};
    const auto samples = drawn({level, rising});
    EXPECT_EQ(triangleAt(samples, 6, 0), 1U);
    EXPECT_EQ(triangleAt(samples, 9, 0), 0U);
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
            alone[static_cast<quint32>(i)] = count(drawn({fan[i]}, samples), 0);
        const auto together = drawn(fan, samples);
        EXPECT_EQ(count(together, Sample::kNothing), 0);
        for (const auto& [triangle, pixels] : alone)
            EXPECT_EQ(count(together, triangle), pixels);
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, FanTest, ::testing::Values(1, 2, 4, 8, 16));

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
    const auto whole = drawn(floats, pixelMatrix(kSide), 4, kSide * 4);
    EXPECT_LT(count(whole, Sample::kNothing), static_cast<int>(whole.size()) / 2);
    for (const int rows : {4, 8, 16, 32}) {
        const auto inBands = drawn(floats, pixelMatrix(kSide), 4, rows);
        ASSERT_EQ(inBands.size(), whole.size());
        for (std::size_t i = 0; i < whole.size(); ++i) {
            EXPECT_EQ(inBands[i].triangle, whole[i].triangle);
            EXPECT_EQ(inBands[i].depth, whole[i].depth);
        }
    }
}

// What is cut off at the picture's sides changes nothing within.
TEST(RasteriserTest, CornersOutsideShowWhatIsInside)
{
    const auto inside = drawn({{{{0, 0}, {16, 0}, {0, 16}}}, {{{16, 0}, {16, 16}, {0, 16}}}});
    const auto across = drawn({{{{-16, -16, 0}, {48, -16, 0}, {-16, 48, 0}}}});
    EXPECT_EQ(count(inside, Sample::kNothing), 0);
    EXPECT_EQ(count(across, Sample::kNothing), 0);
}

TEST(RasteriserTest, WhatIsBehindTheEyeIsNotSeen)
{
    QMatrix4x4 perspective;
    perspective.perspective(90.0F, 1.0F, 0.01F, 1000.0F);
    const std::vector<float> behind = {-1, -1, 1, 1, -1, 1, 0, 1, 1};
    EXPECT_EQ(count(drawn(behind, perspective, 1, kSide), 0), 0);
    // A floor that goes on below the eye and behind it fills the lower half.
    const std::vector<float> floor = {-1000, -1, 500, 1000, -1, 500, 0, -1, -900};
    const auto samples = drawn(floor, perspective, 1, kSide);
    for (int x = 0; x < kSide; ++x) {
        EXPECT_EQ(triangleAt(samples, x, 0), 0U);
        EXPECT_EQ(triangleAt(samples, x, 6), 0U);
        EXPECT_EQ(triangleAt(samples, x, 8), Sample::kNothing);
    }
}

TEST(RasteriserTest, MatricesThatAreNotFiniteShowNothing)
{
    for (const float number : {kNaN, kInfinity, -kInfinity}) {
        QMatrix4x4 matrix = pixelMatrix(kSide);
        matrix(0, 0) = number;
        EXPECT_EQ(count(drawn(floatsOf({{{{0, 0}, {16, 0}, {0, 16}}}}), matrix, 1, kSide), 0), 0);
    }
    EXPECT_EQ(count(drawn(floatsOf({{{{0, 0}, {16, 0}, {0, 16}}}}), QMatrix4x4() * 0.0F, 1, kSide), 0), 0);
}

} // namespace
} // namespace zr::test
