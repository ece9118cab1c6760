// SPDX-License-Identifier: MIT
#include "readers/mesh/obj_mesh.h"

#include "readers/mesh/text/text_blocks.h"
#include "tests/readers/mesh/logged_test.h"
#include "tests/readers/mesh/mesh_files.h"
#include "tests/readers/mesh/reference/reference_text_model.h"
#include "tests/readers/mesh/text/odd_lines.h"
#include "tests/support/qt_printers.h"

#include <cmath>

namespace zr::test
{
namespace
{

constexpr int kBlock = TextBlocks::kBlockBytes;
constexpr int kChunkTriangles = 1456356;
constexpr int kBareChunkTriangles = 2912711;

// Four points that differ in all coordinates.
const QByteArray kPoints = "v 10 20 30\nv 11 22 33\nv 12 25 31\nv 13 21 39\n";
const Vertex kFirst = {10, 20, 30}, kSecond = {11, 22, 33}, kThird = {12, 25, 31}, kFourth = {13, 21, 39};
const Vertex kOrigin = {0, 0, 0};

class ObjMeshTest : public LoggedTest
{
};

std::vector<Vertex> parsed(const QByteArray& content)
{
    SourceFile source(content);
    ObjMesh mesh(ChunkLayout::PositionsAndNormals);
    mesh.parse(source.file());
    EXPECT_FALSE(source.file().isOpen());
    return cornersOf(mesh.chunks());
}

// The corners that a face line, in a file of four points, has.
std::vector<Vertex> faceOf(const QByteArray& line)
{
    return parsed(kPoints + line);
}

// The key with which the parse ends; the chunks that are left are counted.
struct Failure {
    QString key;
    int chunks;
};

Failure failureOf(const QByteArray& content, MemoryProbe probe)
{
    restartLog();
    SourceFile source(content);
    ObjMesh mesh(ChunkLayout::PositionsAndNormals, ObjReading::Server, probe);
    try {
        mesh.parse(source.file());
    } catch (const QString& key) {
        return {key, mesh.chunks().size()};
    }
    return {};
}

TEST_F(ObjMeshTest, FacesCountPointsFromZero)
{
    EXPECT_EQ(faceOf("f 1 2 3\n"), (std::vector<Vertex>{kSecond, kThird, kFourth}));
    EXPECT_EQ(faceOf("f 0 2 1\n"), (std::vector<Vertex>{kFirst, kThird, kSecond}));
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(ObjMeshTest, RecordsHaveNormalsUnlessTheRendererMakesThem)
{
    for (const ChunkLayout layout :
         {ChunkLayout::PositionsAndNormals, ChunkLayout::Positions, ChunkLayout::WholeTriangles}) {
        SourceFile source("v 0 0 0\nv 2 0 0\nv 0 3 0\nf 0 1 2\n");
        ObjMesh mesh(layout);
        mesh.parse(source.file());
        ASSERT_EQ(mesh.chunks().size(), 1);
        const MeshChunk bare = {0, 0, 0, 2, 0, 0, 0, 3, 0};
        const MeshChunk full = {0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 1, 0, 3, 0, 0, 0, 1};
        EXPECT_EQ(*mesh.chunks()[0], layout == ChunkLayout::PositionsAndNormals ? full : bare);
        EXPECT_EQ(mesh.boundingBox(), std::make_pair(Point{0, 0, 0}, Point{2, 3, 0}));
    }
}

struct FaceLine {
    QByteArray line;
    std::vector<Vertex> corners;
};

TEST_F(ObjMeshTest, FaceLinesInAnyForm)
{
    const std::vector<Vertex> usual = {kSecond, kThird, kFourth};
    const std::vector<Vertex> firstOnly = {kFirst, kFirst, kFirst};
    const FaceLine cases[] = {
        {"F 1 2 3\n", usual},
        {"f 1 2 3\r\n", usual},
        {"f 1 2 3", usual},
        {"\t f\t1 \t2  3 \n", usual},
        {"f 1 2 3 0\n", usual},
        {"f 1 2 3 0 1 2 3\n", usual},
        {"f 01 +2 0000000000000000000000003\n", usual},
        {"f 1/1/1 2/2/2 3/3/3\n", firstOnly},
        {"f 1//1 2//2 3//3\n", firstOnly},
        {"f 1/ 2/ /3\n", firstOnly},
        {"f -1 -2 -3\n", firstOnly},
        {"f 1.0 2e0 x\n", firstOnly},
        {"f 1 2/2 3\n", {kSecond, kFirst, kFourth}},
        {"f 1 2 \n", {kSecond, kThird, kFirst}},
        {"f 4 5 99999999\n", {kOrigin, kOrigin, kOrigin}},
        {"f 3 4 2147483647\n", {kFourth, kOrigin, kOrigin}},
        {"f 2147483648 4294967295 18446744073709551615\n", {kOrigin, kOrigin, kOrigin}},
        {"f 4294967296 4294967297 18446744073709551616\n", {kFirst, kSecond, kFirst}},
        {QByteArray("f 1 2 3\0 4\n", 11), usual},
        {"\xEF\xBB\xBF"
         "f 1 2 3\n",
         usual},
        {"f 1 2\n", {}},
        {"f 1 2 ", {}},
        {"f1 2 3 4\n", {}},
        {"face 1 2 3\n", {}},
        {"f\v1 2 3 4\n", {}},
        {"# f 1 2 3\n", {}},
        {QByteArray("f 1 2\0 3\n", 9), {}},
    };
    for (const FaceLine& test : cases)
        EXPECT_EQ(faceOf(test.line), test.corners) << test.line.constData();
}

TEST_F(ObjMeshTest, VertexLinesInAnyForm)
{
    const QByteArray gap(2 * kBlock, ' ');
    for (const QByteArray& line :
         {QByteArray("v 1 2 3\n"), QByteArray("V 1 2 3\r\n"), QByteArray(" v\t+1 2.0 3e0 0.5\n"),
          QByteArray("v 1 2 3 # colour\n"), gap + "v 1" + gap + "2 3\n", QByteArray("\xEF\xBB\xBFv 1 2 3\n")}) {
        EXPECT_EQ(parsed(line + "v 4 5 6\nf 0 0 0\n"), std::vector<Vertex>(3, Vertex{1, 2, 3})) << line.constData();
    }
    for (const QByteArray& line :
         {QByteArray("v 1 2\n"), QByteArray("vt 1 2 3\n"), QByteArray("vn 1 2 3\n"), QByteArray("vp 1 2 3\n"),
          QByteArray("v1 2 3 4\n"), QByteArray("\n"), QByteArray("# v 1 2 3\n"), QByteArray("o v 1 2 3\n")}) {
        EXPECT_EQ(parsed(line + "v 4 5 6\nv 0 0 1\nf 0 0 0\n"), std::vector<Vertex>(3, Vertex{4, 5, 6}))
            << line.constData();
    }
}

TEST_F(ObjMeshTest, FacesSeeOnlyThePointsBeforeThem)
{
    EXPECT_EQ(parsed("v 1 2 3\nf 0 1 2\nv 4 5 6\nf 0 1 2\n"),
              (std::vector<Vertex>{{1, 2, 3}, kOrigin, kOrigin, {1, 2, 3}, {4, 5, 6}, kOrigin}));
}

TEST_F(ObjMeshTest, NumbersOfTheNextLineAreNotTaken)
{
    EXPECT_EQ(parsed(kPoints + "f 1 2\n3 0 0\nf 1\n2 3 0\nv 1 2\n3 4\nf 1 2 3\n"),
              (std::vector<Vertex>{kSecond, kThird, kFourth}));
    EXPECT_EQ(parsed(kPoints + "f 1 2\n3"), std::vector<Vertex>());
    EXPECT_EQ(parsed(kPoints + "f 1 2\r\n3 0"), std::vector<Vertex>());
}

TEST_F(ObjMeshTest, FileOfFacesOnlyLiesAtTheOrigin)
{
    EXPECT_EQ(parsed("f 0 1 2\nf 7 8 9\n"), std::vector<Vertex>(6, kOrigin));
}

TEST_F(ObjMeshTest, FileOfPointsOnlyHasBoundsButNoChunk)
{
    SourceFile source(kPoints);
    ObjMesh mesh(ChunkLayout::PositionsAndNormals);
    mesh.parse(source.file());
    EXPECT_TRUE(mesh.chunks().isEmpty());
    EXPECT_EQ(mesh.boundingBox(), std::make_pair(Point{10, 20, 30}, Point{13, 25, 39}));
}

TEST_F(ObjMeshTest, EmptyFileIsAnEmptyMesh)
{
    for (const QByteArray& content : {QByteArray(), QByteArray("\n"), QByteArray("# nothing\ng\n")})
        EXPECT_TRUE(parsed(content).empty());
}

TEST_F(ObjMeshTest, PointsThatNoFaceUsesCountTowardsTheBounds)
{
    SourceFile source(kPoints + "v -5 0 0\nv 0 100 0\nf 0 1 2\n");
    ObjMesh mesh(ChunkLayout::PositionsAndNormals);
    mesh.parse(source.file());
    EXPECT_EQ(mesh.boundingBox(), std::make_pair(Point{-5, 0, 0}, Point{13, 100, 39}));
}

TEST_F(ObjMeshTest, CornersAtTheOriginDoNot)
{
    SourceFile source(kPoints + "f 0 1 99\n");
    ObjMesh mesh(ChunkLayout::PositionsAndNormals);
    mesh.parse(source.file());
    EXPECT_EQ(mesh.boundingBox().first, (Point{10, 20, 30}));
}

TEST_F(ObjMeshTest, SecondParseReplacesTheFirst)
{
    ObjMesh mesh(ChunkLayout::PositionsAndNormals);
    SourceFile first("v 100 0 0\nv 200 0 0\nf 0 1 0\n");
    SourceFile second(kPoints + "f 0 1 2\n");
    mesh.parse(first.file());
    mesh.parse(second.file());
    EXPECT_EQ(cornersOf(mesh.chunks()), (std::vector<Vertex>{kFirst, kSecond, kThird}));
    EXPECT_EQ(mesh.boundingBox(), std::make_pair(Point{10, 20, 30}, Point{13, 25, 39}));
}

TEST_F(ObjMeshTest, FailuresThrowTheirKeyAfterTheirLine)
{
    const QByteArray faces = kPoints + "f 0 1 2\nf 0 1 3\n";
    EXPECT_EQ(failureOf(faces + QByteArray(1000 - faces.size(), ' '), memoryFor999Bytes).key, "fileIsCanNoRender");
    EXPECT_EQ(logMessages(), QStringList({"23  throw "}));
    EXPECT_EQ(failureOf(faces, shortMemory).key, "memOut");
    EXPECT_EQ(logMessages(), QStringList({"123  throw "}));
    EXPECT_EQ(failureOf(faces, memoryShortAtQuery(3)).key, "memOut");
    EXPECT_EQ(memoryQueries(), 3);
    EXPECT_EQ(failureOf("v 1 2 3\nv 1 2 3\nf 0 1 0\n", muchMemory).key, "modelSizeIsErr");
    EXPECT_EQ(logMessages(), QStringList({"143  throw "}));
    EXPECT_EQ(failureOf("v 0 0 0\nv 10000.001 0 0\n", muchMemory).key, "modelSizeIsErr");
}

TEST_F(ObjMeshTest, ValuesJustBelowTheLimitsPass)
{
    const QByteArray faces = kPoints + "f 0 1 2\n";
    EXPECT_TRUE(failureOf(faces + QByteArray(999 - faces.size(), ' '), memoryFor999Bytes).key.isNull());
    EXPECT_TRUE(failureOf(faces, nearlyShortMemory).key.isNull());
    EXPECT_TRUE(failureOf("v 0 0 0\nv 10000 0 0\nf 0 1 0\n", muchMemory).key.isNull());
}

TEST_F(ObjMeshTest, MemoryIsAskedForEachFace)
{
    EXPECT_TRUE(failureOf(kPoints + QByteArray("f 0 1 2\n").repeated(50), memoryShortAtQuery(1000)).key.isNull());
    EXPECT_EQ(memoryQueries(), 51);
}

void expectChunks(ChunkLayout layout, int chunkTriangles)
{
    SourceFile source(kPoints + QByteArray("f 0 1 2\n").repeated(chunkTriangles) + "f 3 1 2\n");
    ObjMesh mesh(layout, ObjReading::Server, muchMemory);
    mesh.parse(source.file());
    ASSERT_EQ(mesh.chunks().size(), 2);
    const int floats = layout == ChunkLayout::PositionsAndNormals ? kFloatsPerTriangle : kFloatsPerBareTriangle;
    EXPECT_EQ(mesh.chunks()[0]->size(), chunkTriangles * floats);
    EXPECT_EQ(mesh.chunks()[1]->size(), floats);
    EXPECT_EQ(mesh.chunks()[1]->at(0), kFourth[0]);
}

TEST_F(ObjMeshTest, ChunksAreCutAtTheirLimit)
{
    expectChunks(ChunkLayout::PositionsAndNormals, kChunkTriangles);
    expectChunks(ChunkLayout::Positions, kBareChunkTriangles);
    expectChunks(ChunkLayout::WholeTriangles, kBareChunkTriangles);
}

TEST_F(ObjMeshTest, CompleteChunksOutliveAFailure)
{
    const QByteArray content = kPoints + QByteArray("f 0 1 2\n").repeated(kChunkTriangles + 5);
    const Failure failure = failureOf(content, memoryShortAtQuery(kChunkTriangles + 4));
    EXPECT_EQ(failure.key, "memOut");
    EXPECT_EQ(failure.chunks, 1);
}

// Compares a file with what Qt alone makes of it.
void expectAsQt(const QByteArray& content)
{
    SourceFile source(content);
    ObjMesh mesh(ChunkLayout::PositionsAndNormals);
    bool usable = true;
    try {
        mesh.parse(source.file());
    } catch (const QString& key) {
        EXPECT_EQ(key, "modelSizeIsErr");
        usable = false;
    }
    const ReferenceModel reference = referenceObj(content);
    if (usable) {
        EXPECT_TRUE(sameBits(cornersOf(mesh.chunks()), reference.corners)) << content.toPercentEncoding().constData();
    }
    EXPECT_EQ(mesh.boundingBox(), boundsOf(reference.points));
}

TEST_F(ObjMeshTest, OddLinesAreReadAsQtReadsThem)
{
    OddLines odd(8);
    const std::vector<QByteArray> keywords = {"v", "v", "V", "f", "f", "F", "vn", "vt", "g"};
    for (int file = 0; file < 1000; ++file)
        expectAsQt(odd.lines(20, keywords));
}

TEST_F(ObjMeshTest, LinesAcrossTheBuffersEndAreReadAsQtReadsThem)
{
    OddLines odd(9);
    QByteArray content;
    for (int i = 0; content.size() < 8 * kBlock; ++i) {
        const QByteArray index = QByteArray::number(i);
        content += "v " + index + ".5 -0." + index + " 7\nf " + index + " 0 " + QByteArray::number(i / 2) + '\n';
        content += odd.line({"f", "vn"});
    }
    expectAsQt(content);
}

} // namespace
} // namespace zr::test
