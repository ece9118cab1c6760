// SPDX-License-Identifier: MIT
#include "render/software_renderer.h"

#include "render/camera.h"
#include "tests/render/sample_meshes.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <QCoreApplication>
#include <QCryptographicHash>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace zr::test
{
namespace
{

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

class SoftwareRendererTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        restartLog();
    }
};

QImage drawn(const SampleMesh& mesh, const SoftwareSettings& settings = {}, bool perspective = true)
{
    return SoftwareRenderer(perspective, settings).render(mesh.chunks(), mesh.min(), mesh.max());
}

SampleMesh meshOf(const SampleSolid& solid)
{
    SampleMesh mesh(VertexRecord::PositionOnly);
    solid.build(mesh);
    return mesh;
}

// The smallest rectangle with all pixels that are not quite transparent.
QRect seenPart(const QImage& picture)
{
    QRect part;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (qAlpha(rawPixel(picture, x, y)) > 0)
                part |= QRect(x, y, 1, 1);
    return part;
}

const std::vector<SampleSolid> kMeshes = pictureSolids({
    {"RandomTriangles", [](SampleMesh& mesh) { mesh.addRandomTriangles(500, 7); }},
});

class ReferencePictureTest : public SoftwareRendererTest,
                             public ::testing::WithParamInterface<std::tuple<SampleSolid, Camera>>
{
};

TEST_P(ReferencePictureTest, AgreesWithTheReference)
{
    const auto& [solid, camera] = GetParam();
    const SampleMesh mesh = meshOf(solid);
    const QImage picture = drawn(mesh, {}, camera == Camera::Perspective);
    ASSERT_EQ(picture.size(), QSize(400, 400));
    expectSamePicture(picture, rasterise(mesh, camera));
    EXPECT_EQ(logMessages(), QStringList());
    EXPECT_EQ(QCoreApplication::instance(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Meshes, ReferencePictureTest,
                         ::testing::Combine(::testing::ValuesIn(kMeshes),
                                            ::testing::Values(Camera::Perspective, Camera::Orthographic)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) +
                                    (std::get<1>(row.param) == Camera::Perspective ? "Perspective" : "Orthographic");
                         });

TEST_F(SoftwareRendererTest, BackgroundIsWhiteWithoutAlphaAndTheMeshOpaque)
{
    SampleMesh mesh(VertexRecord::PositionOnly);
    mesh.addBox({0, 0, 0}, {10, 20, 5});
    const QImage picture = drawn(mesh);
    ASSERT_EQ(picture.format(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            ASSERT_TRUE(rawPixel(picture, x, y) == 0x00FFFFFF || qAlpha(rawPixel(picture, x, y)) == 255);
    EXPECT_EQ(rawPixel(picture, 0, 0), 0x00FFFFFFU);
    EXPECT_EQ(qAlpha(rawPixel(picture, 200, 200)), 255);
}

TEST_F(SoftwareRendererTest, EmptyListHasNoPicture)
{
    const float corner[] = {0, 0, 0};
    EXPECT_TRUE(SoftwareRenderer(true).render({}, corner, corner).isNull());
    EXPECT_EQ(logMessages(), (QStringList{"184 ---------------renderListZero-----------------", "190 renderListZero"}));
}

TEST_F(SoftwareRendererTest, EmptyChunkDrawsNothing)
{
    SampleMesh mesh(VertexRecord::PositionOnly);
    const float min[] = {0, 0, 0}, max[] = {1, 1, 1};
    const QImage picture = SoftwareRenderer(true).render(mesh.chunks(), min, max);
    ASSERT_FALSE(picture.isNull());
    EXPECT_TRUE(seenPart(picture).isEmpty());
    EXPECT_EQ(logMessages(), QStringList());
}

struct HostileCase {
    const char* name;
    float number;
    std::array<float, 3> min;
    std::array<float, 3> max;
};

class HostileMeshTest : public SoftwareRendererTest, public ::testing::WithParamInterface<HostileCase>
{
};

TEST_P(HostileMeshTest, GivesSomePicture)
{
    const HostileCase& row = GetParam();
    for (const SoftwareSettings& settings : {SoftwareSettings{}, SoftwareSettings::smooth(64)}) {
        for (int place = 0; place < 9; ++place) {
            SampleMesh mesh(VertexRecord::PositionOnly);
            mesh.addBox({0, 0, 0}, {1, 1, 1});
            QVector<float>& chunk = mesh.lastChunk();
            for (int i = place; i < chunk.size(); i += 18)
                chunk[i] = row.number;
            const QImage picture =
                SoftwareRenderer(true, settings).render(mesh.chunks(), row.min.data(), row.max.data());
            EXPECT_EQ(picture.width(), settings.sidePx);
        }
    }
    EXPECT_EQ(logMessages(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Values, HostileMeshTest,
                         ::testing::Values(HostileCase{"NanCorners", kNaN, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"InfiniteCorners", kInfinity, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"HugeCorners", -3e38F, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"LargeCorners", 1e9F, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"TinyCorners", 1e-44F, {0, 0, 0}, {1, 1, 1}},
                                           HostileCase{"NanBox", 0, {kNaN, kNaN, kNaN}, {kNaN, kNaN, kNaN}},
                                           HostileCase{"PointBox", 0, {1, 1, 1}, {1, 1, 1}},
                                           HostileCase{"TinyBox", 0, {0, 0, 0}, {1e-44F, 1e-44F, 1e-44F}},
                                           HostileCase{"InfiniteBox", 0, {-kInfinity, 0, 0}, {kInfinity, 1, 1}},
                                           HostileCase{
                                               "InsideOutBox", 0, {3e38F, 3e38F, 3e38F}, {-3e38F, -3e38F, -3e38F}}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(SoftwareRendererTest, TrianglesThatAreNotFiniteDoNotDisturbTheOthers)
{
    SampleMesh mesh(VertexRecord::PositionOnly);
    mesh.addBox({0, 0, 0}, {10, 20, 5});
    const QImage expected = drawn(mesh);
    mesh.startChunk();
    for (int i = 0; i < 9; ++i)
        mesh.lastChunk() << (i == 4 ? kNaN : 1.0F);
    EXPECT_EQ(drawn(mesh), expected);
}

TEST_F(SoftwareRendererTest, ImpossibleSettingsAreRefused)
{
    for (const int side : {-1, 0, 15, 4097, std::numeric_limits<int>::max()})
        EXPECT_THROW(SoftwareRenderer(true, {side, 1, false}), std::invalid_argument) << side;
    for (const int samples : {-1, 0, 3, 6, 17, 32})
        EXPECT_THROW(SoftwareRenderer(true, {400, samples, false}), std::invalid_argument) << samples;
}

TEST_F(SoftwareRendererTest, SmoothPicturesHaveEightSamplesAPixelUpTo256AndFourAbove)
{
    EXPECT_EQ(SoftwareSettings::smooth(16).samples, 8);
    EXPECT_EQ(SoftwareSettings::smooth(256).samples, 8);
    EXPECT_EQ(SoftwareSettings::smooth(257).samples, 4);
    EXPECT_EQ(SoftwareSettings::smooth(4096).samples, 4);
}

class SizesTest : public SoftwareRendererTest, public ::testing::WithParamInterface<int>
{
};

// Framed: 4 % on each side of what is longer, and the model in the middle.
TEST_P(SizesTest, SmoothPicturesAreFilledUpToTheMargin)
{
    const int side = GetParam();
    for (const SampleSolid& solid : kMeshes) {
        SCOPED_TRACE(solid.name);
        if (std::string(solid.name) == "RandomTriangles")
            continue; // their tips are thinner than samples are apart
        const QImage picture = drawn(meshOf(solid), SoftwareSettings::smooth(side));
        ASSERT_EQ(picture.size(), QSize(side, side));
        const QRect part = seenPart(picture);
        const double expected = side * 0.92;
        EXPECT_NEAR(std::max(part.width(), part.height()), expected, 2.0);
        EXPECT_NEAR(part.left() + part.right(), side - 1, 2);
        EXPECT_NEAR(part.top() + part.bottom(), side - 1, 2);
    }
}

INSTANTIATE_TEST_SUITE_P(Sides, SizesTest, ::testing::Values(16, 128, 256, 512, 1000));

TEST_F(SoftwareRendererTest, LargestPicture)
{
    SampleMesh mesh(VertexRecord::PositionOnly);
    mesh.addSphere({0, 0, 0}, 20, 24);
    const QImage picture = drawn(mesh, SoftwareSettings::smooth(4096));
    ASSERT_EQ(picture.size(), QSize(4096, 4096));
    EXPECT_EQ(qAlpha(rawPixel(picture, 2048, 2048)), 255);
    EXPECT_NEAR(seenPart(picture).width(), 4096 * 0.92, 2);
}

// Pixels at the edges have the share of their samples.
TEST_F(SoftwareRendererTest, EdgesAreSmooth)
{
    SampleMesh mesh(VertexRecord::PositionOnly);
    mesh.addSphere({0, 0, 0}, 20, 60);
    const QImage picture = drawn(mesh, SoftwareSettings::smooth(128));
    int partly = 0;
    double area = 0;
    for (int y = 0; y < 128; ++y) {
        for (int x = 0; x < 128; ++x) {
            const QRgb pixel = rawPixel(picture, x, y);
            const int alpha = qAlpha(pixel);
            partly += alpha > 0 && alpha < 255 ? 1 : 0;
            area += alpha / 255.0;
            // Premultiplied.
            ASSERT_LE(std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)}), alpha);
            ASSERT_NEAR(alpha, std::round(alpha * 8 / 255.0) * 255.0 / 8, 1.0);
        }
    }
    EXPECT_GT(partly, 200);
    const double radius = 128 * 0.46;
    EXPECT_NEAR(area, 3.14159 * radius * radius, 0.01 * radius * radius);
}

TEST_F(SoftwareRendererTest, SizeChangesNothingElse)
{
    SampleMesh mesh(VertexRecord::PositionOnly);
    mesh.addBox({0, 0, 0}, {10, 20, 5});
    for (const bool perspective : {true, false}) {
        const QImage small = drawn(mesh, {400, 1, false}, perspective);
        const QImage large = drawn(mesh, {1200, 1, false}, perspective);
        // The middle one of nine pixels has the same centre.
        QImage middles(400, 400, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < 400; ++y)
            for (int x = 0; x < 400; ++x)
                middles.setPixel(x, y, rawPixel(large, 3 * x + 1, 3 * y + 1));
        expectSamePicture(middles, small);
    }
}

struct HashRow {
    const char* solid; ///< of kMeshes
    SoftwareSettings settings;
    bool perspective;
    const char* hash; ///< SHA-1 of the rows of pixels
};

QByteArray hashOf(const QImage& picture)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (int y = 0; y < picture.height(); ++y)
        hash.addData(reinterpret_cast<const char*>(picture.constScanLine(y)), picture.width() * 4);
    return hash.result().toHex();
}

// Nothing with a sine of the C library in it.
const HashRow kHashes[] = {
    {"Cube", {}, true, "2e6a6ce1a92e2f3900fb273b8c5cc3128fe4627d"},
    {"Cube", SoftwareSettings::smooth(256), true, "ce6875fdcd8e780a8b17ce0e659a5a57623063a4"},
    {"ThinPlate", {}, false, "9c9522619ed64cd38d267137f0f27ed4ecf9294c"},
    {"ThinPlate", SoftwareSettings::smooth(512), true, "e48357d5acd86dde7f8b63870a9481b2ac23e97a"},
    {"InwardCube", {1000, 16, false}, true, "3bbcefdae2eb0294cb63ae94018139b0fb877dba"},
    {"InwardCube", SoftwareSettings::smooth(128), false, "6e7e766fc9b6277080dc5d33968210d33f4d3107"},
    {"RandomTriangles", {}, true, "a4109e2db81db2081b465f86e9d8e00a1d0f04bc"},
    {"RandomTriangles", {400, 1, false}, false, "52f775f7f77047b13a375d4e71e8afff6153aeab"},
    {"RandomTriangles", SoftwareSettings::smooth(1024), true, "89800e5c24dc6a695bb54842450c0cd9a36f2beb"},
    {"RandomTriangles", {333, 2, true}, false, "66d485111d188169475d3b007cde57b61346b255"},
};

// The same bytes on every machine and with every setting of the compiler.
TEST_F(SoftwareRendererTest, PicturesAreTheSameEverywhere)
{
    for (const HashRow& row : kHashes) {
        const auto solid = std::find_if(kMeshes.begin(), kMeshes.end(),
                                        [&](const SampleSolid& each) { return std::string(each.name) == row.solid; });
        ASSERT_NE(solid, kMeshes.end());
        EXPECT_EQ(hashOf(drawn(meshOf(*solid), row.settings, row.perspective)), row.hash)
            << row.solid << ' ' << row.settings.sidePx;
    }
}

} // namespace
} // namespace zr::test
