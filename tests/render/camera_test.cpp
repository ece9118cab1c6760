// SPDX-License-Identifier: MIT
// Where the points of a model are in its picture, and the matrices that take them there.

#include "render/camera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace zr::test
{
namespace
{

using ::testing::NanSensitiveFloatEq;

constexpr double kPi = 3.14159265358979323846;
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kMaxFloat = std::numeric_limits<float>::max();

struct Box {
    std::array<float, 3> min;
    std::array<float, 3> max;
};

constexpr Box kCuboid = {{0, 0, 0}, {10, 20, 5}};
constexpr Box kCube = {{-1, -1, -1}, {1, 1, 1}};

struct PlaceCase {
    const char* name;
    bool isPerspective;
    QSize size;
    Box box;
    QVector3D point;
    float x; ///< in pixels from the left
    float y; ///< in pixels from the top
};

class PlaceTest : public ::testing::TestWithParam<PlaceCase>
{
};

TEST_P(PlaceTest, OfAPointInThePicture)
{
    const PlaceCase& row = GetParam();
    const QMatrix4x4 toClipSpace =
        cameraMatrices(row.size, row.isPerspective).mvpMatrix() * unitBoxMatrix(row.box.min.data(), row.box.max.data());
    const QVector3D place = toClipSpace.map(row.point);
    EXPECT_NEAR((place.x() + 1.0F) * 0.5F * static_cast<float>(row.size.width()), row.x, 0.001F);
    EXPECT_NEAR((1.0F - place.y()) * 0.5F * static_cast<float>(row.size.height()), row.y, 0.001F);
    EXPECT_LT(std::abs(place.z()), 1.0F);
}

INSTANTIATE_TEST_SUITE_P(
    Points, PlaceTest,
    ::testing::Values(PlaceCase{"PerspectiveCentre", true, {400, 400}, kCuboid, {5, 10, 2.5F}, 200, 200},
                      PlaceCase{"PerspectiveMinCorner", true, {400, 400}, kCuboid, {0, 0, 0}, 236.7143F, 296.4089F},
                      PlaceCase{"PerspectiveMaxCorner", true, {400, 400}, kCuboid, {10, 20, 5}, 174.2859F, 132.4766F},
                      PlaceCase{
                          "PerspectiveNearestCorner", true, {400, 400}, kCuboid, {10, 0, 5}, 321.7402F, 199.0981F},
                      PlaceCase{"PerspectiveTop", true, {400, 400}, kCube, {0, 0, 1}, 200, 98.0112F},
                      PlaceCase{"PerspectiveRight", true, {400, 400}, kCube, {1, 0, 0}, 269.8954F, 169.0809F},
                      PlaceCase{"PerspectiveBack", true, {400, 400}, kCube, {0, 1, 0}, 139.0427F, 165.5502F},
                      PlaceCase{"PerspectiveSmallPicture", true, {64, 64}, kCube, {0, 0, 1}, 32, 15.6818F},
                      PlaceCase{"PerspectiveWidePicture", true, {400, 200}, kCube, {1, 0, 0}, 234.9477F, 84.5405F},
                      PlaceCase{"OrthographicCentre", false, {400, 400}, kCuboid, {5, 10, 2.5F}, 200, 200},
                      PlaceCase{"OrthographicMinCorner", false, {400, 400}, kCuboid, {0, 0, 0}, 150, 225},
                      PlaceCase{"OrthographicMaxCorner", false, {400, 400}, kCuboid, {10, 20, 5}, 250, 175},
                      PlaceCase{"OrthographicBackBottomEdge", false, {400, 400}, kCuboid, {0, 20, 0}, 150, 225},
                      PlaceCase{"OrthographicTop", false, {400, 400}, kCube, {0, 0, 1}, 200, 100},
                      PlaceCase{"OrthographicSmallPictureShowsLess", false, {200, 200}, kCube, {1, 0, 1}, 200, 0},
                      PlaceCase{"OrthographicWidePictureShowsMore", false, {800, 400}, kCube, {1, 0, 1}, 500, 100}),
    [](const auto& row) { return std::string(row.param.name); });

using Rows = std::array<std::array<double, 4>, 4>;

void expectMatrix(const QMatrix4x4& actual, const Rows& expected)
{
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(actual(row, column),
                        expected.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(column)), 1e-6)
                << "row " << row << ", column " << column;
}

constexpr Rows kView = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, -2.3}, {0, 0, 0, 1}}};

TEST(CameraMatricesTest, InPerspective)
{
    const CameraMatrices camera = cameraMatrices({400, 400}, true);
    const double zoom = 1.0 / std::tan(kPi / 8.0);
    const double depth = 1000.0 - 0.01;
    expectMatrix(camera.projection, {{{zoom, 0, 0, 0},
                                      {0, zoom, 0, 0},
                                      {0, 0, -(1000.0 + 0.01) / depth, -2.0 * 1000.0 * 0.01 / depth},
                                      {0, 0, -1, 0}}});
    const double c = std::cos(41.5 * kPi / 180.0);
    const double s = std::sin(41.5 * kPi / 180.0);
    const double root = std::sqrt(0.75);
    expectMatrix(camera.rotation,
                 {{{c, -s, 0, 0}, {0.5 * s, 0.5 * c, root, 0}, {-root * s, -root * c, 0.5, 0}, {0, 0, 0, 1}}});
    expectMatrix(camera.view, kView);
}

TEST(CameraMatricesTest, Orthographic)
{
    const CameraMatrices camera = cameraMatrices({400, 400}, false);
    expectMatrix(camera.projection,
                 {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, -400.0 / 1100.0, -900.0 / 1100.0}, {0, 0, 0, 1}}});
    expectMatrix(camera.rotation, {{{1, 0, 0, 0}, {0, 0, 1, 0}, {0, -1, 0, 0}, {0, 0, 0, 1}}});
    expectMatrix(camera.view, kView);
}

struct NormalCase {
    const char* name;
    bool isPerspective;
    QVector3D normal;
    QVector3D turned; ///< +Z points at the viewer
};

class NormalMatrixTest : public ::testing::TestWithParam<NormalCase>
{
};

TEST_P(NormalMatrixTest, TurnsANormalAndKeepsItsLength)
{
    const NormalCase& row = GetParam();
    const QMatrix3x3 matrix = cameraMatrices({400, 400}, row.isPerspective).normalMatrix();
    for (int i = 0; i < 3; ++i) {
        const float turned =
            matrix(i, 0) * row.normal.x() + matrix(i, 1) * row.normal.y() + matrix(i, 2) * row.normal.z();
        EXPECT_NEAR(turned, row.turned[i], 1e-6F) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Directions, NormalMatrixTest,
    ::testing::Values(NormalCase{"PerspectiveUp", true, {0, 0, 1}, {0, 0.8660254F, 0.5F}},
                      NormalCase{"PerspectiveRight", true, {1, 0, 0}, {0.7489557F, 0.3313100F, -0.5738459F}},
                      NormalCase{"OrthographicUp", false, {0, 0, 1}, {0, 1, 0}},
                      NormalCase{"OrthographicFront", false, {0, -1, 0}, {0, 0, 1}}),
    [](const auto& row) { return std::string(row.param.name); });

struct BoxCase {
    const char* name;
    Box box;
    float scale;
    std::array<float, 3> offset; ///< where the model's origin comes to be
};

class UnitBoxTest : public ::testing::TestWithParam<BoxCase>
{
};

TEST_P(UnitBoxTest, IsScaledAndCentred)
{
    const BoxCase& row = GetParam();
    const QMatrix4x4 matrix = unitBoxMatrix(row.box.min.data(), row.box.max.data());
    for (int i = 0; i < 3; ++i) {
        EXPECT_THAT(matrix(i, i), NanSensitiveFloatEq(row.scale)) << i;
        EXPECT_THAT(matrix(i, 3), NanSensitiveFloatEq(row.offset.at(static_cast<std::size_t>(i)))) << i;
        EXPECT_EQ(matrix(i, (i + 1) % 3), 0.0F) << i;
        EXPECT_EQ(matrix(i, (i + 2) % 3), 0.0F) << i;
    }
    EXPECT_EQ(matrix.row(3), QVector4D(0, 0, 0, 1));
}

INSTANTIATE_TEST_SUITE_P(
    Boxes, UnitBoxTest,
    ::testing::Values(BoxCase{"Cuboid", kCuboid, 0.05F, {-0.25F, -0.5F, -0.125F}},
                      BoxCase{"MaxIsX", {{0, 0, 0}, {8, 2, 4}}, 0.125F, {-0.5F, -0.125F, -0.25F}},
                      BoxCase{"MaxIsY", {{0, 0, 0}, {2, 8, 4}}, 0.125F, {-0.125F, -0.5F, -0.25F}},
                      BoxCase{"MaxIsZ", {{0, 0, 0}, {4, 2, 8}}, 0.125F, {-0.25F, -0.125F, -0.5F}},
                      BoxCase{"AllEqual", {{-1, 1, 3}, {1, 3, 5}}, 0.5F, {0, -1, -2}},
                      BoxCase{"XAndYEqual", {{0, 0, 0}, {4, 4, 1}}, 0.25F, {-0.5F, -0.5F, -0.125F}},
                      BoxCase{"XAndZEqual", {{0, 0, 0}, {4, 1, 4}}, 0.25F, {-0.5F, -0.125F, -0.5F}},
                      BoxCase{"YAndZEqual", {{0, 0, 0}, {1, 4, 4}}, 0.25F, {-0.125F, -0.5F, -0.5F}},
                      BoxCase{"RoundedFromDouble", {{0, 0, 0}, {3, 0, 0}}, 1.0F / 3.0F, {-0.5F, 0, 0}},
                      BoxCase{"FlatOnOneAxis", {{0, 0, 7}, {4, 2, 7}}, 0.25F, {-0.5F, -0.25F, -1.75F}},
                      BoxCase{"PointAtTheOrigin", {{0, 0, 0}, {0, 0, 0}}, kInfinity, {kNaN, kNaN, kNaN}},
                      BoxCase{
                          "PointElsewhere", {{1, -2, 3}, {1, -2, 3}}, kInfinity, {-kInfinity, kInfinity, -kInfinity}},
                      BoxCase{"BoundsOfNoVertex",
                              {{kMaxFloat, kMaxFloat, kMaxFloat}, {-kMaxFloat, -kMaxFloat, -kMaxFloat}},
                              0,
                              {0, 0, 0}},
                      BoxCase{"NanInXWins", {{kNaN, 0, 0}, {1, 2, 4}}, kNaN, {kNaN, kNaN, kNaN}},
                      BoxCase{"NanInYLeavesX", {{0, kNaN, 0}, {1, 2, 4}}, 1, {-0.5F, kNaN, -2}},
                      BoxCase{"NanInZLeavesXAndY", {{0, 0, kNaN}, {1, 2, 4}}, 0.5F, {-0.25F, -0.5F, kNaN}},
                      BoxCase{"Infinite", {{-kInfinity, 0, 0}, {kInfinity, 1, 1}}, 0, {kNaN, 0, 0}}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
} // namespace zr::test
