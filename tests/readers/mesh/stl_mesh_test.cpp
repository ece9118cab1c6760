// SPDX-License-Identifier: MIT
#include "readers/mesh/stl_mesh.h"

#include "tests/readers/mesh/logged_test.h"
#include "tests/readers/mesh/mesh_files.h"
#include "tests/readers/mesh/reference/reference_text_model.h"
#include "tests/support/qt_printers.h"

#include <cmath>

namespace zr::test
{
namespace
{

// 3,000,000 triangles: more than a batch or a chunk holds.
constexpr int kManyTriangles = 3000000;
constexpr int kBatchTriangles = 2912711;
constexpr int kAsciiChunkTriangles = 1456356;

class StlMeshTest : public LoggedTest
{
};

Triangle cornerAt(float x)
{
    return {{{x, 0, 0}, {x, 1, 0}, {x, 0, 1}}};
}

std::vector<Vertex> cornersOf(const std::vector<Triangle>& triangles)
{
    std::vector<Vertex> corners;
    for (const Triangle& triangle : triangles)
        corners.insert(corners.end(), triangle.begin(), triangle.end());
    return corners;
}

using zr::test::cornersOf;

// The mesh of a file that can be parsed.
void expectTriangles(const QByteArray& content, const std::vector<Triangle>& triangles)
{
    SourceFile source(content);
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    EXPECT_TRUE(mesh.parse(source.file()));
    EXPECT_EQ(cornersOf(mesh.chunks()), cornersOf(triangles));
    EXPECT_FALSE(source.file().isOpen());
}

// A file whose parse fails with these lines in the log.
void expectFailure(const QByteArray& content, MemoryProbe probe, const QStringList& log)
{
    restartLog();
    SourceFile source(content);
    StlMesh mesh(ChunkLayout::PositionsAndNormals, probe);
    EXPECT_FALSE(mesh.parse(source.file()));
    EXPECT_TRUE(mesh.chunks().isEmpty());
    EXPECT_FALSE(source.file().isOpen());
    EXPECT_EQ(logMessages(), log);
}

TEST_F(StlMeshTest, TrianglesHaveTheirOwnNormalsAndBounds)
{
    const std::vector<Triangle> triangle = {{{{0, 0, 0}, {2, 0, 0}, {0, 3, 0}}}};
    for (const bool isBinary : {true, false}) {
        restartLog();
        SourceFile source(isBinary ? binaryStl(triangle) : asciiStl(triangle));
        StlMesh mesh(ChunkLayout::PositionsAndNormals);
        EXPECT_TRUE(mesh.parse(source.file()));
        ASSERT_EQ(mesh.chunks().size(), 1);
        EXPECT_EQ(*mesh.chunks()[0], (MeshChunk{0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 1, 0, 3, 0, 0, 0, 1}));
        EXPECT_EQ(mesh.boundingBox(), std::make_pair(Point{0, 0, 0}, Point{2, 3, 0}));
        EXPECT_EQ(mesh.triangleCount(), isBinary ? 1U : 0U);
        EXPECT_EQ(logMessages(), isBinary ? QStringList({"100 "}) : QStringList());
    }
}

TEST_F(StlMeshTest, NormalsAreWrittenWhateverTheRendererReports)
{
    for (const QByteArray& content : {binaryStl(twoTriangles()), asciiStl(twoTriangles())}) {
        SourceFile source(content);
        StlMesh mesh(ChunkLayout::Positions);
        EXPECT_TRUE(mesh.positionsOnly());
        EXPECT_TRUE(mesh.parse(source.file()));
        EXPECT_FALSE(mesh.positionsOnly());
        EXPECT_EQ(mesh.chunks().value(0)->size(), 2 * kFloatsPerTriangle);
    }
}

TEST_F(StlMeshTest, WholeTrianglesHaveNoNormals)
{
    for (const QByteArray& content : {binaryStl(twoTriangles()), asciiStl(twoTriangles())}) {
        SourceFile source(content);
        StlMesh whole(ChunkLayout::WholeTriangles);
        EXPECT_TRUE(whole.parse(source.file()));
        ASSERT_EQ(whole.chunks().size(), 1);
        MeshChunk expected;
        for (const Triangle& triangle : twoTriangles())
            for (const Point& corner : triangle)
                expected << corner[0] << corner[1] << corner[2];
        EXPECT_EQ(*whole.chunks()[0], expected);
        SourceFile sameSource(content);
        StlMesh full(ChunkLayout::PositionsAndNormals);
        EXPECT_TRUE(full.parse(sameSource.file()));
        EXPECT_EQ(whole.boundingBox(), full.boundingBox());
    }
}

TEST_F(StlMeshTest, BothFormsGiveTheSameMesh)
{
    expectTriangles(binaryStl(twoTriangles()), twoTriangles());
    expectTriangles(asciiStl(twoTriangles()), twoTriangles());
}

TEST_F(StlMeshTest, SecondParseReplacesTheFirst)
{
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    SourceFile first(asciiStl({cornerAt(100)}));
    SourceFile second(binaryStl({cornerAt(1)}));
    EXPECT_TRUE(mesh.parse(first.file()));
    EXPECT_TRUE(mesh.parse(second.file()));
    EXPECT_EQ(cornersOf(mesh.chunks()), cornersOf({cornerAt(1)}));
    EXPECT_EQ(mesh.boundingBox(), std::make_pair(Point{1, 0, 0}, Point{1, 1, 1}));
}

struct Detection {
    const char* firstLines;
    bool ascii;
};

TEST_F(StlMeshTest, TwoLinesTellTextFromBinary)
{
    const std::string longLine(1100, 'x');
    const std::string lateFacet = "solid\n" + longLine + "facet\n";
    const std::string longFirst = "solid" + longLine + "\nfacet\n";
    // The 1023 bytes of the first read are the first line, what follows them is the second.
    const std::string cutFirst = "solid" + std::string(1018, 'x') + "facet\n";
    const Detection cases[] = {{"solid a\nfacet\n", true},
                               {"  solid a\n xfacetx\n", true},
                               {"xsolidx\r\nfacet normal\r\n", true},
                               {"solid a\nouter loop\nfacet\n", false},
                               {"SOLID a\nfacet\n", false},
                               {"solid a\nFACET\n", false},
                               {"sol id\nfacet\n", false},
                               {"\nsolid\nfacet\n", false},
                               {"solid facet\nx\n", false},
                               {"solid facet", false},
                               {"solid", false},
                               {"", false},
                               {lateFacet.c_str(), false},
                               {longFirst.c_str(), false},
                               {cutFirst.c_str(), true}};
    // What follows them is a triangle in the text form only.
    const QByteArray facet = asciiFacet(cornerAt(3));
    for (const Detection& test : cases) {
        SourceFile source(test.firstLines + facet);
        StlMesh mesh(ChunkLayout::PositionsAndNormals);
        mesh.parse(source.file());
        EXPECT_EQ(!mesh.chunks().isEmpty(), test.ascii) << test.firstLines;
    }
}

TEST_F(StlMeshTest, DetectionStopsAtAZeroByte)
{
    const QByteArray facet = asciiFacet(cornerAt(3));
    for (const QByteArray& lines : {QByteArray("a\0solid\nfacet\n", 14), QByteArray("solid\na\0facet\n", 14)}) {
        SourceFile source(lines + facet);
        StlMesh mesh(ChunkLayout::PositionsAndNormals);
        mesh.parse(source.file());
        EXPECT_TRUE(mesh.chunks().isEmpty());
    }
}

TEST_F(StlMeshTest, BinaryHeaderThatBeginsWithSolidIsBinary)
{
    QByteArray content = binaryStl(twoTriangles());
    content.replace(0, 13, "solid model\nx");
    expectTriangles(content, twoTriangles());
}

TEST_F(StlMeshTest, FileIsOpenedWhenItIsNotOpen)
{
    SourceFile source(binaryStl(twoTriangles()));
    source.file().close();
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    EXPECT_TRUE(mesh.parse(source.file()));
    EXPECT_EQ(mesh.chunks().size(), 1);
}

TEST_F(StlMeshTest, FileThatCannotBeOpenedFails)
{
    QFile file(QStringLiteral("/nowhere/model.stl"));
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    EXPECT_FALSE(mesh.parse(file));
    EXPECT_EQ(logMessages(), QStringList({"15  throw "}));
}

TEST_F(StlMeshTest, BinaryFailuresLeaveTheirLineAndNoChunk)
{
    const QByteArray two = binaryStl(twoTriangles());
    expectFailure(two, noFreeMemory, {"61  throw "});
    expectFailure(binaryStl(twoTriangles(), 3), muchMemory, {"97  throw "});
    expectFailure(two.left(two.size() - 1), muchMemory, {"97  throw "});
    expectFailure(two, shortMemory, {"100 ", "156  throw "});
    expectFailure(binaryStl({{{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}}}), muchMemory, {"100 ", "170  throw size  0"});
    expectFailure(binaryStl({{{{0, 0, 0}, {10000.001F, 0, 0}, {0, 1, 0}}}}), muchMemory,
                  {"100 ", "170  throw size  10000.0009765625"});
    expectFailure(binaryStl({{{{0, 0, 0}, {0, INFINITY, 0}, {0, 1, 0}}}}), muchMemory,
                  {"100 ", "170  throw size  inf"});
    expectFailure(binaryStl({{{{0, 0, -3e38F}, {0, 0, 0}, {0, 1, 0}}}}), muchMemory,
                  {"100 ", "170  throw size  3.0000000054977558e+38"});
}

TEST_F(StlMeshTest, AsciiFailuresLeaveTheirLineAndNoChunk)
{
    const QByteArray two = asciiStl(twoTriangles());
    const QByteArray large = two + QByteArray(1000 - two.size(), ' ');
    expectFailure(large, memoryFor999Bytes, {"190  throw "});
    expectFailure(two, shortMemory, {"290  throw "});
    expectFailure(two, memoryShortAtQuery(3), {"290  throw "});
    EXPECT_EQ(memoryQueries(), 3);
    expectFailure(asciiStl({{{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}}}), muchMemory, {"320  throw "});
    expectFailure(asciiStl({{{{0, 0, 0}, {10000.001F, 0, 0}, {0, 1, 0}}}}), muchMemory, {"320  throw "});
}

TEST_F(StlMeshTest, ValuesJustBelowTheLimitsPass)
{
    const QByteArray two = asciiStl(twoTriangles());
    SourceFile small(two + QByteArray(999 - two.size(), ' '));
    EXPECT_TRUE(StlMesh(ChunkLayout::PositionsAndNormals, memoryFor999Bytes).parse(small.file()));
    SourceFile nearlyShort(two);
    EXPECT_TRUE(StlMesh(ChunkLayout::PositionsAndNormals, nearlyShortMemory).parse(nearlyShort.file()));
    expectTriangles(binaryStl({{{{0, 0, 0}, {10000, 0, 0}, {0, 1, 0}}}}), {{{{0, 0, 0}, {10000, 0, 0}, {0, 1, 0}}}});
}

TEST_F(StlMeshTest, BinaryFileSizeIsNotComparedWithTheMemory)
{
    SourceFile source(binaryStl(std::vector<Triangle>(30, cornerAt(1))));
    EXPECT_TRUE(StlMesh(ChunkLayout::PositionsAndNormals, memoryFor999Bytes).parse(source.file()));
}

TEST_F(StlMeshTest, MemoryIsAskedForEachAsciiTriangle)
{
    SourceFile source(asciiStl(std::vector<Triangle>(50, cornerAt(1))));
    EXPECT_TRUE(StlMesh(ChunkLayout::PositionsAndNormals, memoryShortAtQuery(1000)).parse(source.file()));
    EXPECT_EQ(memoryQueries(), 51);
}

TEST_F(StlMeshTest, FilesWithoutTrianglesGiveAnEmptyMesh)
{
    for (const QByteArray& content :
         {binaryStl({}), QByteArray(), QByteArray(79, 'x'), QByteArray(80, 'x'), QByteArray("solid\nfacet\n")}) {
        expectTriangles(content, {});
        EXPECT_EQ(logMessages(), QStringList());
    }
}

TEST_F(StlMeshTest, CutCountIsWhatIsThereOfIt)
{
    QByteArray content(80, 'x');
    content.append('\x02');
    expectFailure(content, muchMemory, {"97  throw "});
}

TEST_F(StlMeshTest, HugeCountInASmallFileFailsAtOnce)
{
    for (const quint32 count : {0xFFFFFFFFU, 0x80000000U, 2912712U, 2912711U})
        expectFailure(binaryStl(twoTriangles(), count), muchMemory, {"97  throw "});
}

TEST_F(StlMeshTest, BytesAfterTheLastTriangleDoNotMatter)
{
    expectTriangles(binaryStl(twoTriangles()) + "more", twoTriangles());
    expectTriangles(binaryStl(twoTriangles(), 1), {twoTriangles()[0]});
}

TEST_F(StlMeshTest, BinaryBatchesBecomeChunks)
{
    std::vector<Triangle> triangles(kManyTriangles, cornerAt(1));
    triangles[kBatchTriangles - 1] = cornerAt(2);
    triangles[kBatchTriangles] = cornerAt(3);
    triangles.back() = cornerAt(4);
    SourceFile source(binaryStl(triangles));
    triangles = {};
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    EXPECT_TRUE(mesh.parse(source.file()));
    ASSERT_EQ(mesh.chunks().size(), 2);
    EXPECT_EQ(mesh.chunks()[0]->size(), kBatchTriangles * kFloatsPerTriangle);
    EXPECT_EQ(mesh.chunks()[1]->size(), (kManyTriangles - kBatchTriangles) * kFloatsPerTriangle);
    EXPECT_EQ(mesh.chunks()[0]->at((kBatchTriangles - 1) * kFloatsPerTriangle), 2);
    EXPECT_EQ(mesh.chunks()[1]->at(0), 3);
    EXPECT_EQ(mesh.chunks()[1]->at((kManyTriangles - kBatchTriangles - 1) * kFloatsPerTriangle), 4);
    EXPECT_EQ(logMessages(), QStringList({"100 ", "100 "}));
}

TEST_F(StlMeshTest, MemoryThatRunsShortInTheSecondBatchEndsTheParse)
{
    const std::vector<Triangle> triangles(kManyTriangles, cornerAt(1));
    expectFailure(binaryStl(triangles), memoryShortAtQuery(3), {"100 ", "100 ", "156  throw "});
}

TEST_F(StlMeshTest, AsciiChunksAreCutAtTheirLimit)
{
    const QByteArray facet = "vertex 1 0 0\nvertex 1 1 0\nvertex 1 0 1\n";
    const QByteArray last = "vertex 2 0 0\nvertex 2 1 0\nvertex 2 0 1\n";
    SourceFile source("solid\nfacet\n" + facet.repeated(kAsciiChunkTriangles) + last);
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    EXPECT_TRUE(mesh.parse(source.file()));
    ASSERT_EQ(mesh.chunks().size(), 2);
    EXPECT_EQ(mesh.chunks()[0]->size(), kAsciiChunkTriangles * kFloatsPerTriangle);
    EXPECT_EQ(mesh.chunks()[1]->size(), kFloatsPerTriangle);
    EXPECT_EQ(mesh.chunks()[1]->at(0), 2);
}

TEST_F(StlMeshTest, ParseFromAnyPositionReadsTheWholeFile)
{
    SourceFile source(binaryStl(twoTriangles()));
    source.file().seek(50);
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    EXPECT_TRUE(mesh.parse(source.file()));
    EXPECT_EQ(cornersOf(mesh.chunks()), cornersOf(twoTriangles()));
}

} // namespace
} // namespace zr::test
