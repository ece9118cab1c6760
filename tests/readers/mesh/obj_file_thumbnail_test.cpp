// SPDX-License-Identifier: MIT
#include "readers/mesh/obj_file_thumbnail.h"

#include "tests/readers/mesh/model_reader_test.h"

namespace zr::test
{
namespace
{

const QStringList kMadeParts = {"12 ", "14 ", "16 "};

// A file whose faces have points of their own.
QByteArray objOf(const std::vector<Triangle>& triangles)
{
    QByteArray points, faces;
    int index = 0;
    for (const Triangle& triangle : triangles) {
        faces += 'f';
        for (const Vertex& corner : triangle) {
            points += 'v';
            for (const float coordinate : corner)
                points += ' ' + QByteArray::number(double{coordinate}, 'g', 9);
            points += '\n';
            faces += ' ' + QByteArray::number(index++);
        }
        faces += '\n';
    }
    return points + faces;
}

class ObjFileThumbnailTest : public ModelReaderTest
{
};

class ObjPictureTest : public ObjFileThumbnailTest, public ::testing::WithParamInterface<SampleSolid>
{
};

TEST_P(ObjPictureTest, ShowsTheMeshInPerspective)
{
    SampleMesh mesh;
    GetParam().build(mesh);
    const QImage picture = pictureOf<ObjFileThumbnail>(objOf(trianglesOf(mesh)));
    EXPECT_EQ(logMessages(), kMadeParts);
    expectSamePicture(picture, rasterise(mesh.chunks(), mesh.min(), mesh.max(), Camera::Perspective));
}

INSTANTIATE_TEST_SUITE_P(Models, ObjPictureTest, ::testing::ValuesIn(modelCases()), caseName);

TEST_F(ObjFileThumbnailTest, UnusedPointsMakeTheModelSmaller)
{
    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {10, 20, 5});
    const std::array<float, 3> max = {10, 20, 40};
    const QImage picture = pictureOf<ObjFileThumbnail>(objOf(trianglesOf(mesh)) + "v 0 0 40\n");
    expectSamePicture(picture, rasterise(mesh.chunks(), mesh.min(), max.data(), Camera::Perspective));
}

TEST_F(ObjFileThumbnailTest, FileThatCannotBeOpenedHasNoPicture)
{
    expectOpenFailures<ObjFileThumbnail>(kMadeParts + QStringList({"40  throw ", "45 fileCanNotOpen"}));
}

TEST_F(ObjFileThumbnailTest, FailedParseHasNoPicture)
{
    EXPECT_TRUE(pictureOf<ObjFileThumbnail>("v 1 1 1\n").isNull());
    EXPECT_EQ(logMessages(), kMadeParts + QStringList({"143  throw ", "45 modelSizeIsErr"}));
}

TEST_F(ObjFileThumbnailTest, FileWithoutTrianglesHasNoPicture)
{
    for (const QByteArray& content : {QByteArray(), QByteArray("v 0 0 0\nv 1 1 1\n")}) {
        EXPECT_TRUE(pictureOf<ObjFileThumbnail>(content).isNull());
        EXPECT_EQ(logMessages(), kMadeParts + QStringList({"184 ---------------renderListZero-----------------",
                                                           "190 renderListZero"}));
    }
}

TEST_F(ObjFileThumbnailTest, PointsAndFacesThatAreNotFiniteDoNoHarm)
{
    EXPECT_TRUE(pictureOf<ObjFileThumbnail>("v nan inf -inf\nf 0 0 0\n").isNull());
    for (const char* content : {"v nan nan nan\nf 0 0 0\n", "f 0 1 2\n", "v 0 0 0\nv 1 0 0\nv 0 nan 1\nf 0 1 2\n"})
        EXPECT_EQ(pictureOf<ObjFileThumbnail>(content).size(), QSize(400, 400)) << content;
}

} // namespace
} // namespace zr::test
