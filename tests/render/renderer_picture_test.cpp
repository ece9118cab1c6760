// SPDX-License-Identifier: MIT
// What render() draws: framing, shading, chunks; compared with pictures that were computed without OpenGL.

#include "render/camera.h"
#include "tests/render/renderer_under_test.h"
#include "tests/support/qt_printers.h"

#include <array>
#include <limits>
#include <thread>

namespace zr::test
{
namespace
{

using Pipeline = RendererUnderTest::Pipeline;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

const std::vector<SampleSolid> kMeshes = pictureSolids({
    {"HugeBox",
     [](SampleMesh& mesh) {
         mesh.addBox({-5000, -5000, -2000}, {5000, 5000, 0});
     }},
});

using PictureCase = std::tuple<SampleSolid, Camera, Pipeline>;

class RendererPictureTest : public RendererTest, public ::testing::WithParamInterface<PictureCase>
{
};

TEST_P(RendererPictureTest, AgreesWithTheReference)
{
    const auto& [solid, camera, pipeline] = GetParam();
    const VertexRecord record =
        pipeline == Pipeline::Plain ? VertexRecord::PositionAndNormal : VertexRecord::PositionOnly;
    SampleMesh mesh(record);
    solid.build(mesh);
    RendererUnderTest renderer(camera == Camera::Perspective, pipeline);
    const QImage picture = renderer.render(mesh);
    const QImage expected = rasterise(mesh, camera);
    const QByteArray folder = qgetenv("ZR_TEST_PICTURES");
    if (!folder.isEmpty()) {
        const QString name = QString::fromLocal8Bit(folder) + QLatin1Char('/') + QLatin1String(solid.name) +
                             (camera == Camera::Perspective ? "P" : "O") + (pipeline == Pipeline::Plain ? "" : "G");
        picture.save(name + ".png");
        expected.save(name + "-expected.png");
    }
    ASSERT_EQ(picture.size(), QSize(400, 400));
    EXPECT_GT(meshPixelCount(expected), 0);
    expectSamePicture(picture, expected);
    EXPECT_EQ(logMessages(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Meshes, RendererPictureTest,
                         ::testing::Combine(::testing::ValuesIn(kMeshes),
                                            ::testing::Values(Camera::Perspective, Camera::Orthographic),
                                            ::testing::Values(Pipeline::Plain, Pipeline::GeometryShader)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) +
                                    (std::get<1>(row.param) == Camera::Perspective ? "Perspective" : "Orthographic") +
                                    (std::get<2>(row.param) == Pipeline::Plain ? "Plain" : "GeometryShader");
                         });

TEST_F(RendererTest, GeometryShaderGivesThePlainPicture)
{
    for (const SampleSolid& row : kMeshes) {
        SCOPED_TRACE(row.name);
        SampleMesh plainMesh(VertexRecord::PositionAndNormal);
        SampleMesh positions(VertexRecord::PositionOnly);
        row.build(plainMesh);
        row.build(positions);
        RendererUnderTest plain;
        const QImage expected = plain.render(plainMesh);
        RendererUnderTest geometry(true, Pipeline::GeometryShader);
        const QImage actual = geometry.render(positions);
        expectSamePicture(actual, expected);
    }
}

TEST_F(RendererTest, BackgroundIsWhiteWithoutAlphaAndTheMeshOpaque)
{
    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {10, 20, 5});
    RendererUnderTest renderer;
    const QImage picture = renderer.render(mesh);
    ASSERT_EQ(picture.size(), QSize(400, 400));
    ASSERT_EQ(picture.depth(), 32);
    int meshPixels = 0;
    for (int y = 0; y < 400; ++y) {
        for (int x = 0; x < 400; ++x) {
            const QRgb pixel = rawPixel(picture, x, y);
            if (pixel == 0x00FFFFFF)
                continue;
            ASSERT_EQ(qAlpha(pixel), 255);
            ++meshPixels;
        }
    }
    EXPECT_EQ(meshPixels, meshPixelCount(picture));
    EXPECT_EQ(rawPixel(picture, 0, 0), 0x00FFFFFFU);
    EXPECT_EQ(qAlpha(rawPixel(picture, 200, 200)), 255);
}

TEST_F(RendererTest, EmptyListFramesTheModelAllTheSame)
{
    const std::array<float, 3> min = {0, 0, 0};
    const std::array<float, 3> max = {10, 20, 5};
    RendererUnderTest renderer;
    EXPECT_TRUE(renderer.render({}, min.data(), max.data()).isNull());
    EXPECT_EQ(logMessages(), (QStringList{"184 ---------------renderListZero-----------------", "190 renderListZero"}));
    EXPECT_FALSE(renderer.m_model.isIdentity());
    EXPECT_EQ(renderer.m_model, unitBoxMatrix(min.data(), max.data()));
}

TEST_F(RendererTest, EmptyListAfterAPictureKeepsThePictureBuffer)
{
    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {1, 1, 1});
    RendererUnderTest renderer;
    const QImage picture = renderer.render(mesh);
    const auto* frame = renderer.m_fbo.get();
    EXPECT_TRUE(renderer.render({}, mesh.min(), mesh.max()).isNull());
    EXPECT_EQ(renderer.m_fbo.get(), frame);
    expectSamePicture(renderer.render(mesh), picture);
}

TEST_F(RendererTest, PictureIsDrawnAfreshEachTime)
{
    SampleMesh box;
    box.addBox({0, 0, 0}, {10, 20, 5});
    SampleMesh sphere;
    sphere.addSphere({0, 0, 0}, 3, 12);
    RendererUnderTest renderer;
    renderer.render(box);
    const QImage picture = renderer.render(sphere);
    expectSamePicture(picture, rasterise(sphere));
}

TEST_F(RendererTest, StateAfterAPicture)
{
    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {1, 1, 1});
    RendererUnderTest renderer;
    renderer.render(mesh);
    auto* gl = renderer.m_functions;
    EXPECT_TRUE(gl->glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(gl->glIsEnabled(GL_CULL_FACE));
    EXPECT_FALSE(gl->glIsEnabled(GL_BLEND));
    const auto integer = [gl](GLenum name) {
        GLint value = -1;
        gl->glGetIntegerv(name, &value);
        return value;
    };
    EXPECT_EQ(integer(GL_BLEND_SRC_RGB), GL_SRC_ALPHA);
    EXPECT_EQ(integer(GL_BLEND_DST_RGB), GL_ONE_MINUS_SRC_ALPHA);
    EXPECT_EQ(integer(GL_CURRENT_PROGRAM), static_cast<GLint>(renderer.m_program->programId()));
    EXPECT_EQ(integer(GL_FRAMEBUFFER_BINDING), static_cast<GLint>(renderer.m_fbo->handle()));
    EXPECT_EQ(integer(GL_VERTEX_ARRAY_BINDING), 0);
    EXPECT_EQ(integer(GL_ARRAY_BUFFER_BINDING), 0);
    EXPECT_EQ(renderer.m_fbo->attachment(), QOpenGLFramebufferObject::CombinedDepthStencil);
    EXPECT_EQ(renderer.m_fbo->format().samples(), 0);
}

TEST_F(RendererTest, OnlyTheFrontOfAFaceIsDrawn)
{
    RendererUnderTest renderer;
    SampleMesh mesh;
    mesh.addTriangle({0, 0, 0}, {10, 0, 0}, {0, 10, 0});
    EXPECT_GT(meshPixelCount(renderer.render(mesh)), 0);
    SampleMesh inward;
    inward.turnInward();
    inward.addTriangle({0, 0, 0}, {10, 0, 0}, {0, 10, 0});
    const QImage picture = renderer.render(inward);
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(meshPixelCount(picture), 0);
}

/// A chunk that ends within a vertex, or within a triangle.
class CutChunkTest : public RendererTest, public ::testing::WithParamInterface<int>
{
};

TEST_P(CutChunkTest, DrawsTheWholeTrianglesOnly)
{
    SampleMesh whole;
    whole.addTriangle({0, 0, 0}, {10, 0, 0}, {0, 10, 0});
    SampleMesh cut;
    cut.addTriangle({0, 0, 0}, {10, 0, 0}, {0, 10, 0});
    cut.addTriangle({10, 0, 0}, {10, 10, 0}, {0, 10, 0});
    cut.lastChunk().resize(18 + GetParam());
    RendererUnderTest renderer;
    const QImage expected = renderer.render(whole.chunks(), cut.min(), cut.max());
    ASSERT_GT(meshPixelCount(expected), 0);
    EXPECT_EQ(renderer.render(cut), expected);
}

INSTANTIATE_TEST_SUITE_P(ExtraFloats, CutChunkTest, ::testing::Values(1, 5, 6, 11, 12, 17));

TEST_F(RendererTest, EmptyChunkDrawsNothing)
{
    SampleMesh mesh;
    const std::array<float, 3> min = {0, 0, 0};
    const std::array<float, 3> max = {1, 1, 1};
    RendererUnderTest renderer;
    const QImage picture = renderer.render(mesh.chunks(), min.data(), max.data());
    ASSERT_FALSE(picture.isNull());
    EXPECT_EQ(meshPixelCount(picture), 0);
    EXPECT_EQ(logMessages(), QStringList());
}

struct HostileCase {
    const char* name;
    float vertexValue;
    float normalValue;
    std::array<float, 3> min;
    std::array<float, 3> max;
};

class HostileMeshTest : public RendererTest, public ::testing::WithParamInterface<HostileCase>
{
};

TEST_P(HostileMeshTest, GivesSomePicture)
{
    const HostileCase& row = GetParam();
    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {1, 1, 1});
    QVector<float>& chunk = mesh.lastChunk();
    for (int i = 0; i + 5 < chunk.size(); i += 18) {
        chunk[i] = row.vertexValue;
        chunk[i + 3] = row.normalValue;
    }
    RendererUnderTest renderer;
    EXPECT_EQ(renderer.render(mesh.chunks(), row.min.data(), row.max.data()).size(), QSize(400, 400));
    EXPECT_EQ(logMessages(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Values, HostileMeshTest,
                         ::testing::Values(HostileCase{"NanVertices", kNaN, 0, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"InfiniteVertices", kInfinity, 0, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"HugeVertices", 3e38F, 0, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"NanNormals", 0, kNaN, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"NanBox", 0, 0, {kNaN, kNaN, kNaN}, {kNaN, kNaN, kNaN}},
                                           HostileCase{"PointBox", 0, 0, {1, 1, 1}, {1, 1, 1}},
                                           HostileCase{"InfiniteBox", 0, 0, {-kInfinity, 0, 0}, {kInfinity, 1, 1}},
                                           HostileCase{
                                               "InsideOutBox", 0, 0, {3e38F, 3e38F, 3e38F}, {-3e38F, -3e38F, -3e38F}}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(RendererTest, NanTrianglesDoNotDisturbTheOthers)
{
    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {10, 20, 5});
    const QImage expected = rasterise(mesh);
    mesh.startChunk();
    for (int i = 0; i < 18; ++i)
        mesh.lastChunk() << kNaN;
    RendererUnderTest renderer;
    expectSamePicture(renderer.render(mesh), expected);
}

// The host may request pictures on any thread, and on several at once.
TEST_F(RendererTest, EachThreadHasItsOwnRenderer)
{
    SampleMesh mesh;
    mesh.addSphere({0, 0, 0}, 10, 12);
    const QImage expected = rasterise(mesh);
    constexpr std::size_t kThreads = 3;
    constexpr int kRounds = 3;
    std::array<QImage, kThreads> pictures;
    std::array<std::thread, kThreads> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.at(i) = std::thread([&, i] {
            for (int round = 0; round < kRounds; ++round)
                pictures.at(i) = RendererUnderTest().render(mesh);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const QImage& picture : pictures)
        expectSamePicture(picture, expected);
    EXPECT_EQ(logMessages(), QStringList());
}

} // namespace
} // namespace zr::test
