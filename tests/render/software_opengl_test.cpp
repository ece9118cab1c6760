// SPDX-License-Identifier: MIT
// With its default settings, the software renderer makes the pictures of the OpenGL one.

#include "render/software_renderer.h"
#include "tests/render/renderer_under_test.h"
#include "tests/support/qt_printers.h"

namespace zr::test
{
namespace
{

struct Difference {
    int modelPixels = 0;  ///< seen in the OpenGL picture
    int silhouette = 0;   ///< pixels that only one picture shows
    int otherColours = 0; ///< pixels whose colours differ by more than 1 of 255
};

Difference compare(const QImage& actual, const QImage& expected)
{
    Difference difference;
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            const QRgb left = actual.pixel(x, y);
            const QRgb right = expected.pixel(x, y);
            difference.modelPixels += qAlpha(right) == 255 ? 1 : 0;
            if (qAlpha(left) != qAlpha(right)) {
                ++difference.silhouette;
                continue;
            }
            const int most = std::max({std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
                                       std::abs(qBlue(left) - qBlue(right))});
            difference.otherColours += most > 1 ? 1 : 0;
        }
    }
    return difference;
}

const std::vector<SampleSolid> kMeshes = pictureSolids({
    {"FinerThanPixels",
     [](SampleMesh& mesh) {
         mesh.addSphere({0, 0, 0}, 20, 400);
     }},
    {"RandomTriangles", [](SampleMesh& mesh) { mesh.addRandomTriangles(2000, 1); }},
    // Corners far outside of the box and behind the eye, as of faces whose points are missing.
    {"CornersOutside",
     [](SampleMesh& mesh) {
         mesh.addSphere({0, 0, 0}, 20, 12);
         mesh.addOutside({-20, 20, -20}, {20, 20, -20}, {300, -900, 700});
         mesh.addOutside({-20, -20, 20}, {-20, 20, 20}, {1e6F, 1e6F, -1e6F});
         mesh.addOutside({5, -5, -20}, {2000, -3000, 1000}, {-20, 5, 2000});
     }},
    // Depths in which the order of rounding decides.
    {"SliversInOnePlane", [](SampleMesh& mesh) { mesh.addSliversInOnePlane(3000, 3); }},
    {"OtherRandomTriangles", [](SampleMesh& mesh) { mesh.addRandomTriangles(2000, 2); }},
});

using PictureCase = std::tuple<SampleSolid, Camera>;

class SoftwareOpenGlTest : public RendererTest, public ::testing::WithParamInterface<PictureCase>
{
};

TEST_P(SoftwareOpenGlTest, PicturesAgree)
{
    const auto& [solid, camera] = GetParam();
    SampleMesh withNormals;
    solid.build(withNormals);
    SampleMesh positions(VertexRecord::PositionOnly);
    solid.build(positions);
    const bool perspective = camera == Camera::Perspective;
    const QImage expected = RendererUnderTest(perspective).render(withNormals);
    const QImage actual = SoftwareRenderer(perspective).render(positions.chunks(), positions.min(), positions.max());
    ASSERT_EQ(actual.size(), expected.size());
    const Difference difference = compare(actual, expected);
    EXPECT_GT(difference.modelPixels, 0);
    EXPECT_LE(difference.silhouette, difference.modelPixels / 1000);
    EXPECT_LE(difference.otherColours, difference.modelPixels / 1000);
    RecordProperty("silhouette", difference.silhouette);
    std::printf("%d pixels: %d silhouette, %d colours\n", difference.modelPixels, difference.silhouette,
                difference.otherColours);
}

INSTANTIATE_TEST_SUITE_P(Meshes, SoftwareOpenGlTest,
                         ::testing::Combine(::testing::ValuesIn(kMeshes),
                                            ::testing::Values(Camera::Perspective, Camera::Orthographic)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) +
                                    (std::get<1>(row.param) == Camera::Perspective ? "Perspective" : "Orthographic");
                         });

} // namespace
} // namespace zr::test
