// SPDX-License-Identifier: MIT
#include "readers/mesh/triangle.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

namespace zr::test
{
namespace
{

Vec4 vec(float x, float y, float z)
{
    // The fourth number means nothing, so it must not matter.
    return Vec4{x, y, z, std::numeric_limits<float>::quiet_NaN()};
}

void expectNormal(Vec4 normal, std::array<double, 3> expected, double tolerance)
{
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(double{normal[axis]}, expected[static_cast<std::size_t>(axis)], tolerance) << "axis " << axis;
}

TEST(TriangleTest, NormalPointsToTheCounterClockwiseSide)
{
    expectNormal(triangleNormal(vec(0, 0, 0), vec(1, 0, 0), vec(0, 1, 0)), {0, 0, 1}, 0);
    expectNormal(triangleNormal(vec(0, 0, 0), vec(0, 1, 0), vec(1, 0, 0)), {0, 0, -1}, 0);
    expectNormal(triangleNormal(vec(5, 5, 5), vec(5, 6, 5), vec(5, 5, 6)), {1, 0, 0}, 0);
    expectNormal(triangleNormal(vec(0, 0, 0), vec(0, 0, 2), vec(3, 0, 0)), {0, 1, 0}, 0);
}

TEST(TriangleTest, NormalOfAnyTriangleIsAsInDoubles)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> coordinate(-50, 50);
    for (int i = 0; i < 10000; ++i) {
        std::array<float, 9> p{};
        for (float& number : p)
            number = coordinate(random);
        const double ux = double{p[3]} - p[0], uy = double{p[4]} - p[1], uz = double{p[5]} - p[2];
        const double vx = double{p[6]} - p[3], vy = double{p[7]} - p[4], vz = double{p[8]} - p[5];
        const double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
        const double length = std::sqrt(x * x + y * y + z * z);
        if (length < 10)
            continue;
        expectNormal(triangleNormal(vec(p[0], p[1], p[2]), vec(p[3], p[4], p[5]), vec(p[6], p[7], p[8])),
                     {x / length, y / length, z / length}, 1e-4);
    }
}

class EdgeLengthTest : public ::testing::TestWithParam<float>
{
};

TEST_P(EdgeLengthTest, NormalHasLengthOne)
{
    const float edge = GetParam();
    const double third = 1 / std::sqrt(3.0);
    expectNormal(triangleNormal(vec(0, 0, 0), vec(0, 0, edge), vec(edge, 0, 0)), {0, 1, 0}, 1e-6);
    expectNormal(triangleNormal(vec(edge, 0, 0), vec(0, edge, 0), vec(0, 0, edge)), {third, third, third}, 1e-6);
}

// From just above the edges whose cross product is below the smallest float to just below those where it overflows.
INSTANTIATE_TEST_SUITE_P(Scales, EdgeLengthTest,
                         ::testing::Values(1e-20F, 1e-18F, 1e-12F, 1e-8F, 1e-6F, 1e-4F, 1e-3F, 1.0F, 1e4F, 1e8F, 1e15F,
                                           1e19F));

TEST(TriangleTest, OnlyAZeroCrossProductHasTheZeroNormal)
{
    expectNormal(triangleNormal(vec(1, 2, 3), vec(1, 2, 3), vec(1, 2, 3)), {0, 0, 0}, 0);
    expectNormal(triangleNormal(vec(0, 0, 0), vec(1, 1, 1), vec(2, 2, 2)), {0, 0, 0}, 0);
    expectNormal(triangleNormal(vec(0, 0, 0), vec(1e-30F, 0, 0), vec(0, 1e-30F, 0)), {0, 0, 0}, 0);
}

TEST(TriangleTest, CornersThatAreNotFiniteDoNoHarm)
{
    const float bad[] = {NAN, INFINITY, -INFINITY, 3e38F, -3e38F};
    for (const float value : bad) {
        const Vec4 normal = triangleNormal(vec(value, 0, 0), vec(0, value, 0), vec(0, 0, -value));
        EXPECT_FALSE(std::isfinite(normal[0]) && std::isfinite(normal[1]) && std::isfinite(normal[2]));
    }
}

TEST(TriangleTest, RecordsArePositionAndNormal)
{
    std::array<float, kFloatsPerTriangle + 1> out{};
    out.back() = 77;
    writeTriangle(out.data(), vec(1, 2, 3), vec(4, 2, 3), vec(1, 5, 3));
    EXPECT_EQ(out, (std::array<float, 19>{1, 2, 3, 0, 0, 1, 4, 2, 3, 0, 0, 1, 1, 5, 3, 0, 0, 1, 77}));
}

TEST(TriangleTest, BareRecordsArePositions)
{
    std::array<float, kFloatsPerBareTriangle + 1> out{};
    out.back() = 77;
    writeBareTriangle(out.data(), vec(1, 2, 3), vec(4, 2, 3), vec(1, 5, 3));
    EXPECT_EQ(out, (std::array<float, 10>{1, 2, 3, 4, 2, 3, 1, 5, 3, 77}));
}

TEST(TriangleTest, BoundsPassOverNaN)
{
    Bounds bounds;
    bounds.include(vec(1, NAN, -5));
    bounds.include(vec(-2, NAN, 7));
    EXPECT_EQ(bounds.max[0], 1);
    EXPECT_EQ(bounds.min[0], -2);
    EXPECT_EQ(bounds.max[2], 7);
    EXPECT_EQ(bounds.min[2], -5);
    EXPECT_EQ(bounds.max[1], std::numeric_limits<float>::lowest());
    EXPECT_EQ(bounds.min[1], std::numeric_limits<float>::max());
}

} // namespace
} // namespace zr::test
