// SPDX-License-Identifier: MIT
#include "readers/mesh/stl_file_thumbnail.h"

#include "tests/readers/mesh/model_reader_test.h"

#include <cmath>

namespace zr::test
{
namespace
{

const QStringList kEmptyMesh = {"184 ---------------renderListZero-----------------", "190 renderListZero"};

class StlFileThumbnailTest : public ModelReaderTest
{
};

class StlPictureTest : public StlFileThumbnailTest, public ::testing::WithParamInterface<SampleSolid>
{
};

TEST_P(StlPictureTest, BothFormsGiveThePictureOfTheMesh)
{
    SampleMesh mesh;
    GetParam().build(mesh);
    const QImage expected = rasterise(mesh.chunks(), mesh.min(), mesh.max(), Camera::Perspective);
    expectSamePicture(pictureOf<StlFileThumbnail>(binaryStl(trianglesOf(mesh))), expected);
    EXPECT_EQ(logMessages(), QStringList({"100 "}));
    expectSamePicture(pictureOf<StlFileThumbnail>(asciiStl(trianglesOf(mesh))), expected);
    EXPECT_EQ(logMessages(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Models, StlPictureTest, ::testing::ValuesIn(modelCases()), caseName);

TEST_F(StlFileThumbnailTest, SeveralChunksShowInOnePicture)
{
    // Two boxes with a chunk's worth of copies of one triangle between them.
    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {10, 20, 5});
    mesh.addBox({20, 0, 0}, {30, 20, 15});
    const auto triangles = trianglesOf(mesh);
    std::vector<Triangle> many(triangles.begin(), triangles.begin() + 12);
    many.insert(many.end(), 2912711, triangles[0]);
    many.insert(many.end(), triangles.begin() + 12, triangles.end());
    const QImage picture = pictureOf<StlFileThumbnail>(binaryStl(many));
    EXPECT_EQ(logMessages(), QStringList({"100 ", "100 "}));
    expectSamePicture(picture, rasterise(mesh.chunks(), mesh.min(), mesh.max(), Camera::Perspective));
}

TEST_F(StlFileThumbnailTest, CornersThatAreNotFiniteDoNoHarm)
{
    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {10, 10, 10});
    auto triangles = trianglesOf(mesh);
    triangles[3][1][2] = NAN;
    EXPECT_EQ(pictureOf<StlFileThumbnail>(binaryStl(triangles)).size(), QSize(400, 400));
    EXPECT_EQ(pictureOf<StlFileThumbnail>(asciiStl(triangles)).size(), QSize(400, 400));
    // All of them: the extent is NaN as well, which is not a size error.
    for (auto& triangle : triangles) {
        for (auto& corner : triangle)
            corner = {NAN, INFINITY, -INFINITY};
    }
    pictureOf<StlFileThumbnail>(binaryStl(triangles));
    EXPECT_EQ(logMessages().value(0), "100 ");
}

TEST_F(StlFileThumbnailTest, FileThatCannotBeOpenedHasNoPicture)
{
    const SourceFile source(binaryStl(twoTriangles()));
    StlFileThumbnail reader(source.path() + "x");
    EXPECT_TRUE(reader.getImage().isNull());
    EXPECT_EQ(logMessages(), QStringList({"38  throw ", "43 fileCanNotOpen"}));
    // Nor has it one later.
    EXPECT_TRUE(reader.previewImage().isNull());
    reader.readFile();
    EXPECT_EQ(logMessages().size(), 2);
}

TEST_F(StlFileThumbnailTest, FailedParseIsAnEmptyMeshToTheRenderer)
{
    EXPECT_TRUE(pictureOf<StlFileThumbnail>(binaryStl(twoTriangles(), 3)).isNull());
    EXPECT_EQ(logMessages(), QStringList({"97  throw "}) + kEmptyMesh);
    EXPECT_TRUE(pictureOf<StlFileThumbnail>(asciiStl({{{{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}}})).isNull());
    EXPECT_EQ(logMessages(), QStringList({"320  throw "}) + kEmptyMesh);
}

TEST_F(StlFileThumbnailTest, FileWithoutTrianglesHasNoPicture)
{
    for (const QByteArray& content : {QByteArray(), binaryStl({}), asciiStl({})}) {
        EXPECT_TRUE(pictureOf<StlFileThumbnail>(content).isNull());
        EXPECT_EQ(logMessages(), kEmptyMesh);
    }
}

TEST_F(StlFileThumbnailTest, TwoHundredFilesOfOneProcessHavePictures)
{
    for (int i = 1; i <= 200; ++i) {
        const auto edge = static_cast<float>(100 + i);
        const QImage picture = pictureOf<StlFileThumbnail>(binaryStl({{{{0, 0, 0}, {edge, 0, 0}, {0, 0, 300}}}}));
        ASSERT_GT(meshPixelCount(picture), 0) << i;
    }
}

} // namespace
} // namespace zr::test
