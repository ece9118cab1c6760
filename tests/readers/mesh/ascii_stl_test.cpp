// SPDX-License-Identifier: MIT
// The lines of text STL files: which of them are vertices, and what their numbers are.

#include "readers/mesh/stl_mesh.h"
#include "readers/mesh/text/text_blocks.h"
#include "tests/readers/mesh/mesh_files.h"
#include "tests/readers/mesh/reference/reference_text_model.h"
#include "tests/readers/mesh/text/odd_lines.h"
#include "tests/support/data_folder_fixture.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kBlock = TextBlocks::kBlockBytes;
const QByteArray kHead = "solid\nfacet\n";

// Keeps the size of a model that a test has other cares with within the limits.
const QByteArray kUnitFacet = "vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n";

std::vector<Vertex> parsed(const QByteArray& content)
{
    SourceFile source(content);
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    EXPECT_TRUE(mesh.parse(source.file()));
    return cornersOf(mesh.chunks());
}

// The vertices of lines that come after one facet.
std::vector<Vertex> verticesOf(const QByteArray& lines)
{
    auto corners = parsed(kHead + kUnitFacet + lines);
    EXPECT_GE(corners.size(), 3U);
    corners.erase(corners.begin(), corners.begin() + 3);
    return corners;
}

struct VertexLine {
    QByteArray line;
    bool counts;
};

class AsciiStlTest : public DataFolderTest
{
};

TEST_F(AsciiStlTest, VertexLinesCountInAnyForm)
{
    const QByteArray gap(2 * kBlock, ' ');
    const VertexLine lines[] = {
        {"vertex 1 2 3\n", true},
        {"VERTEX 1 2 3\n", true},
        {"VeRtEx 1 2 3\r\n", true},
        {"\t  vertex\t1 \t2   3\n", true},
        {"vertex 1 2 3 4 5\n", true},
        {"vertex 1 2 3 # text\n", true},
        {"vertex 1e0 +2 3.0000000000000000\n", true},
        {"\xEF\xBB\xBFvertex 1 2 3\n", true},
        {QByteArray("vertex 1 2 3\0 4\n", 17), true},
        {gap + "vertex 1 2 3\n", true},
        {"vertex " + gap + "1 2 3" + gap + "4\n", true},
        {"\xEF\xBB\xBF vertex 1 2" + gap + "3\n", true},
        {"vertex 1 2\n", false},
        {"vertex 1 2", false},
        {"vertex1 2 3 4\n", false},
        {"vertexx 1 2 3\n", false},
        {"verte 1 2 3\n", false},
        {"x vertex 1 2 3\n", false},
        {"\v vertex 1 2 3\n", false},
        {"vertex\r 1 2 3\n", false},
        {" \xEF\xBB\xBFvertex 1 2 3\n", false},
        {QByteArray("vertex 1 2 \0 3\n", 15), false},
        {QByteArray("\0vertex 1 2 3\n", 14), false},
        {gap + "x vertex 1 2 3\n", false},
    };
    for (const VertexLine& test : lines) {
        const std::vector<Vertex> expected(test.counts ? 3 : 0, Vertex{1, 2, 3});
        const QByteArray end = test.line.endsWith('\n') ? "" : "\n";
        EXPECT_EQ(verticesOf((test.line + end).repeated(3)), expected) << test.line.simplified().constData();
    }
}

TEST_F(AsciiStlTest, TerminatorAfterBlanksIsATokenThatReadsAsZero)
{
    const QByteArray line = "vertex 1 2 \n";
    EXPECT_EQ(verticesOf(line.repeated(3)), std::vector<Vertex>(3, Vertex{1, 2, 0}));
    // The end of the file is not one.
    EXPECT_EQ(verticesOf("vertex 1 2 \r\nvertex 1 2 \nvertex 1 2 "), std::vector<Vertex>());
}

TEST_F(AsciiStlTest, NumbersOfTheNextLineAreNotTaken)
{
    EXPECT_EQ(verticesOf(QByteArray("vertex 1 2\n3 4\nvertex 1\n2 3\n").repeated(3)), std::vector<Vertex>());
}

TEST_F(AsciiStlTest, LastLineNeedsNoTerminator)
{
    EXPECT_EQ(verticesOf("vertex 1 2 3\nvertex 1 2 3\nvertex 1 2 3"), std::vector<Vertex>(3, Vertex{1, 2, 3}));
}

TEST_F(AsciiStlTest, FirstLineNeverCounts)
{
    EXPECT_EQ(parsed("vertex 9 9 9 solid\nfacet\n" + kUnitFacet).size(), 3U);
}

TEST_F(AsciiStlTest, VerticesLeftOverAreDropped)
{
    const QByteArray line = "vertex 1 2 3\n";
    EXPECT_EQ(verticesOf(line.repeated(4)).size(), 3U);
    EXPECT_EQ(verticesOf(line.repeated(5)).size(), 3U);
    EXPECT_EQ(verticesOf(line.repeated(2)).size(), 0U);
}

TEST_F(AsciiStlTest, VerticesOfDifferentFacetsMakeATriangle)
{
    const auto corners = verticesOf("vertex 1 0 0\nendfacet\nfacet\nvertex 2 0 0\nendsolid\nsolid\nvertex 3 1 0\n");
    EXPECT_EQ(corners, (std::vector<Vertex>{{1, 0, 0}, {2, 0, 0}, {3, 1, 0}}));
}

TEST_F(AsciiStlTest, NumbersOfOneLineMayBeLongerThanTheBuffer)
{
    const QByteArray zeros(kBlock, '0');
    const QByteArray line =
        "vertex " + zeros + "1 2." + zeros + " 3" + zeros + "e-" + QByteArray::number(kBlock) + '\n';
    EXPECT_EQ(verticesOf(line.repeated(3)), std::vector<Vertex>(3, Vertex{1, 2, 3}));
}

// Compares a file with what Qt alone makes of it.
void expectAsQt(const QByteArray& content)
{
    SourceFile source(content);
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    const bool ok = mesh.parse(source.file());
    const ReferenceModel reference = referenceAsciiStl(content);
    if (ok) {
        EXPECT_TRUE(sameBits(cornersOf(mesh.chunks()), reference.corners)) << content.toPercentEncoding().constData();
    } else {
        // Too large a model; its bounds remain.
        EXPECT_FALSE(reference.corners.empty());
    }
    EXPECT_EQ(mesh.boundingBox(), boundsOf(reference.points));
}

TEST_F(AsciiStlTest, OddLinesAreReadAsQtReadsThem)
{
    OddLines odd(6);
    const std::vector<QByteArray> keywords = {"vertex", "vertex", "vertex", "VERTEX", "Vertex", "facet", "endloop"};
    for (int file = 0; file < 1000; ++file)
        expectAsQt(kHead + odd.lines(20, keywords));
}

TEST_F(AsciiStlTest, LinesAcrossTheBuffersEndAreReadAsQtReadsThem)
{
    OddLines odd(7);
    QByteArray content = kHead;
    // Numbers of moderate size, so that the model is accepted.
    const QByteArray facet = asciiFacet(twoTriangles()[0]) + asciiFacet(twoTriangles()[1]);
    while (content.size() < 5 * kBlock)
        content += facet + odd.line({"outer"});
    expectAsQt(content);
}

} // namespace
} // namespace zr::test
