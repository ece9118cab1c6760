// SPDX-License-Identifier: MIT
#include "readers/mesh/slc_file_thumbnail.h"

#include "tests/readers/mesh/model_reader_test.h"
#include "tools/samples/slc_bytes.h"

#include <cmath>

namespace zr::test
{
namespace
{

using samples::ContourLayer;
using samples::ContourPoint;
using samples::SlcParts;

constexpr float kThickness = 2;
const QStringList kMadeParts = {"11 ", "13 ", "15 "};

std::vector<ContourPoint> circle(float x, float y, float radius, int steps)
{
    std::vector<ContourPoint> points;
    for (int i = 0; i <= steps; ++i) {
        const double angle = (i % steps) * 6.283185307179586 / steps;
        points.push_back(
            {x + radius * static_cast<float>(std::cos(angle)), y + radius * static_cast<float>(std::sin(angle))});
    }
    return points;
}

std::vector<ContourPoint> reversed(std::vector<ContourPoint> points)
{
    std::reverse(points.begin(), points.end());
    return points;
}

// Walls as the format's readers make them, and the box around them and their normals.
class WallModel
{
public:
    void add(float x, float y, float z)
    {
        const std::array<float, 3> point{x, y, z};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            m_min[axis] = std::min(m_min[axis], point[axis]);
            m_max[axis] = std::max(m_max[axis], point[axis]);
        }
    }

    void addWall(const ContourPoint& from, const ContourPoint& to, float z)
    {
        const QVector3D a(to[0], to[1], z), b(from[0], from[1], z);
        const QVector3D up(0, 0, kThickness);
        m_mesh.addTriangle(a + up, b, a);
        m_mesh.addTriangle(b + up, b, a);
        const float dx = to[0] - from[0], dy = to[1] - from[1], length = std::hypot(dx, dy);
        add(dy / length, -dx / length, 0);
        for (const ContourPoint& point : {from, to}) {
            add(point[0], point[1], z);
            add(point[0], point[1], z + kThickness);
        }
    }

    QImage picture() const { return rasterise(m_mesh.chunks(), m_min.data(), m_max.data(), Camera::Orthographic); }

private:
    SampleMesh m_mesh;
    std::array<float, 3> m_min{1e9F, 1e9F, 1e9F};
    std::array<float, 3> m_max{-1e9F, -1e9F, -1e9F};
};

struct SlcCase {
    const char* name;
    std::vector<ContourLayer> (*layers)();
};

std::string caseName(const ::testing::TestParamInfo<SlcCase>& test)
{
    return test.param.name;
}

// Contours at several heights, each a layer's thickness above the other.
std::vector<ContourLayer> stack(int layers, float bottom, std::vector<std::vector<ContourPoint>> (*contours)(float))
{
    std::vector<ContourLayer> stack;
    for (int i = 0; i < layers; ++i) {
        const float z = bottom + kThickness * static_cast<float>(i);
        stack.push_back({z, contours(z)});
    }
    return stack;
}

const SlcCase kCases[] = {
    {"Box",
     [] {
         return stack(1, 0, [](float) {
             return std::vector<std::vector<ContourPoint>>{{{0, 0}, {40, 0}, {40, 30}, {0, 30}, {0, 0}}};
         });
     }},
    {"Cone",
     [] {
         return stack(20, 0,
                      [](float z) { return std::vector<std::vector<ContourPoint>>{circle(0, 0, 30 - z / 2, 60)}; });
     }},
    {"CupWithAHole",
     [] {
         return stack(10, 0, [](float) {
             return std::vector<std::vector<ContourPoint>>{circle(5, 5, 20, 40), reversed(circle(5, 5, 15, 40))};
         });
     }},
    {"OpenCurve",
     [] {
         return stack(4, 3, [](float) { return std::vector<std::vector<ContourPoint>>{{{-9, 4}, {0, 0}, {12, -3}}}; });
     }},
    {"FarOffOrigin",
     [] {
         return stack(10, 50, [](float) { return std::vector<std::vector<ContourPoint>>{circle(400, 300, 20, 40)}; });
     }},
    {"Clockwise",
     [] {
         return stack(3, 0, [](float) { return std::vector<std::vector<ContourPoint>>{reversed(circle(0, 0, 9, 7))}; });
     }},
};

class SlcFileThumbnailTest : public ModelReaderTest
{
};

class SlcPictureTest : public SlcFileThumbnailTest, public ::testing::WithParamInterface<SlcCase>
{
};

TEST_P(SlcPictureTest, ShowsTheWallsFromTheFront)
{
    SlcParts parts;
    parts.samplingTable = {{0, kThickness}};
    parts.layers = GetParam().layers();
    WallModel model;
    for (const ContourLayer& layer : parts.layers) {
        for (const auto& contour : layer.contours) {
            for (std::size_t i = 1; i < contour.size(); ++i)
                model.addWall(contour[i - 1], contour[i], layer.z);
        }
    }
    const QImage picture = pictureOf<SlcFileThumbnail>(samples::slcBytes(parts));
    EXPECT_EQ(logMessages(), kMadeParts + QStringList({"23 ", "133 "}));
    EXPECT_GT(meshPixelCount(picture), 0);
    expectSamePicture(picture, model.picture());
}

INSTANTIATE_TEST_SUITE_P(Contours, SlcPictureTest, ::testing::ValuesIn(kCases),
                         [](const auto& test) { return caseName(test); });

TEST_F(SlcFileThumbnailTest, FileThatCannotBeOpenedHasNoPicture)
{
    expectOpenFailures<SlcFileThumbnail>(kMadeParts + QStringList({"40  throw ", "45 fileCanNotOpen"}));
}

TEST_F(SlcFileThumbnailTest, FailedParseHasNoPicture)
{
    EXPECT_TRUE(pictureOf<SlcFileThumbnail>("no contours").isNull());
    EXPECT_EQ(logMessages(), kMadeParts + QStringList({"23 ", "130  throw ", "45 fileHeadErr"}));
}

TEST_F(SlcFileThumbnailTest, FileWithoutWallsHasNoPicture)
{
    EXPECT_TRUE(pictureOf<SlcFileThumbnail>(samples::slcBytes(SlcParts())).isNull());
    EXPECT_EQ(logMessages(),
              kMadeParts + QStringList({"23 ", "133 ", "184 ---------------renderListZero-----------------",
                                        "190 renderListZero"}));
}

} // namespace
} // namespace zr::test
