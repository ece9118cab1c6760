// SPDX-License-Identifier: MIT
#include "readers/mesh/slc_mesh.h"

#include "tests/readers/mesh/logged_test.h"
#include "tests/readers/mesh/mesh_files.h"
#include "tests/readers/mesh/reference/reference_slc.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/slc_bytes.h"

#include <QElapsedTimer>

#include <cmath>
#include <random>

namespace zr::test
{
namespace
{

using samples::ContourPoint;
using samples::slcBoundary;
using samples::slcEnd;
using samples::slcHead;
using samples::slcLayer;
using samples::SlcParts;

// A chunk ends with the triple of floats that makes 100 MiB full.
constexpr int kChunkFloats = 26214402;
constexpr qint64 kSoon = 2000;

const std::vector<ContourPoint> kSquare = {{10, 20}, {30, 20}, {30, 40}, {10, 40}, {10, 20}};

class SlcMeshTest : public LoggedTest
{
};

QByteArray withLayers(const QByteArray& layers)
{
    return slcHead(SlcParts()) + layers;
}

// The layer at 5 whose only boundary is the square.
QByteArray squareLayer()
{
    return slcLayer(5, slcBoundary(kSquare), 1);
}

struct Parsed {
    QString key;
    std::vector<ReferenceSlc::Point> triples;
    Point min;
    Point max;
};

Parsed parsed(const QByteArray& content, MemoryProbe probe = muchMemory,
              ChunkLayout layout = ChunkLayout::PositionsAndNormals)
{
    restartLog();
    SourceFile source(content);
    SlcMesh mesh(layout, probe);
    Parsed result;
    try {
        mesh.parse(source.file());
        EXPECT_FALSE(source.file().isOpen());
    } catch (const QString& key) {
        result.key = key;
    }
    result.triples = triplesOf(mesh.chunks());
    std::tie(result.min, result.max) = mesh.boundingBox();
    return result;
}

bool nearlyEqual(const ReferenceSlc::Point& a, const ReferenceSlc::Point& b)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        // Positions are the same to the bit; of normals the last bits may differ.
        if (!(std::abs(a[axis] - b[axis]) <= 1e-6F) && !(std::isnan(a[axis]) && std::isnan(b[axis])) &&
            a[axis] != b[axis])
            return false;
    }
    return true;
}

bool nearlyEqual(const std::vector<ReferenceSlc::Point>& a, const std::vector<ReferenceSlc::Point>& b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](const auto& x, const auto& y) { return nearlyEqual(x, y); });
}

// Compares a file with what the reference makes of it.
void expectAsReference(const QByteArray& content, const char* what = "")
{
    const ReferenceSlc reference = referenceSlc(content);
    const Parsed result = parsed(content);
    EXPECT_EQ(result.key == "fileHeadErr" || result.key == "fileReadLess", !reference.hasTable) << what;
    if (!reference.hasTable)
        return;
    EXPECT_TRUE(nearlyEqual(result.triples, reference.triples)) << what;
    EXPECT_TRUE(nearlyEqual(result.min, reference.min)) << what;
    EXPECT_TRUE(nearlyEqual(result.max, reference.max)) << what;
}

// The number of walls of a file that has no other trouble.
std::size_t wallsOf(const QByteArray& layers)
{
    const Parsed result = parsed(withLayers(layers));
    EXPECT_EQ(result.key, QString());
    expectAsReference(withLayers(layers));
    return result.triples.size() / 12;
}

TEST_F(SlcMeshTest, WallIsTwoTrianglesOverItsLowerEdge)
{
    const Parsed result = parsed(withLayers(slcLayer(5, slcBoundary({{1, 2}, {3, 2}}), 1) + slcEnd()));
    const ReferenceSlc::Point a{3, 2, 5}, b{1, 2, 5}, c{3, 2, 5.5F}, d{1, 2, 5.5F}, n{0, -1, 0};
    EXPECT_EQ(result.triples, (std::vector<ReferenceSlc::Point>{c, n, b, n, a, n, d, n, b, n, a, n}));
    EXPECT_EQ(logMessages(), QStringList({"23 ", "133 "}));
}

TEST_F(SlcMeshTest, NormalsAreLeftOutWhenTheRendererMakesThem)
{
    const Parsed result = parsed(withLayers(slcLayer(5, slcBoundary({{1, 2}, {3, 2}}), 1) + slcEnd()), muchMemory,
                                 ChunkLayout::Positions);
    const ReferenceSlc::Point a{3, 2, 5}, b{1, 2, 5}, c{3, 2, 5.5F}, d{1, 2, 5.5F};
    EXPECT_EQ(result.triples, (std::vector<ReferenceSlc::Point>{c, b, a, d, b, a}));
    EXPECT_EQ(result.min, (Point{1, 2, 5}));
    EXPECT_EQ(result.max, (Point{3, 2, 5.5F}));
}

TEST_F(SlcMeshTest, BoundsEncloseTheNormals)
{
    const Parsed result = parsed(withLayers(slcLayer(50, slcBoundary(kSquare), 1)));
    EXPECT_EQ(result.min, (Point{-1, -1, 0}));
    EXPECT_EQ(result.max, (Point{30, 40, 50.5F}));
}

TEST_F(SlcMeshTest, ContoursAreNotClosedAndSmallOnesAddNothing)
{
    EXPECT_EQ(wallsOf(slcLayer(0, slcBoundary({{0, 0}, {9, 0}, {9, 9}}), 1)), 2U);
    EXPECT_EQ(wallsOf(slcLayer(0, slcBoundary({{0, 0}}) + slcBoundary(kSquare), 2)), 4U);
    EXPECT_EQ(wallsOf(slcLayer(0, slcBoundary({}) + slcBoundary(kSquare), 2)), 4U);
    EXPECT_EQ(wallsOf(slcLayer(0, QByteArray(), 0) + squareLayer()), 4U);
}

TEST_F(SlcMeshTest, GapCountDoesNotMatter)
{
    QByteArray boundary = slcBoundary(kSquare);
    boundary.replace(4, 4, "\xFF\xFF\xFF\xFF");
    EXPECT_EQ(wallsOf(slcLayer(0, boundary, 1)), 4U);
}

TEST_F(SlcMeshTest, EndMarkMayBeMissingAndEndsTheLayers)
{
    EXPECT_EQ(wallsOf(squareLayer()), 4U);
    EXPECT_EQ(wallsOf(squareLayer() + slcEnd()), 4U);
    EXPECT_EQ(wallsOf(squareLayer() + slcEnd() + squareLayer()), 4U);
    EXPECT_EQ(wallsOf(squareLayer() + squareLayer() + slcEnd()), 8U);
}

TEST_F(SlcMeshTest, FileThatEndsEarlyKeepsItsWholeBoundaries)
{
    const QByteArray layers = squareLayer() + squareLayer();
    for (int length = 0; length <= layers.size(); ++length) {
        const auto walls = wallsOf(layers.left(length));
        EXPECT_EQ(walls, length < layers.size() / 2 ? 0U : length < layers.size() ? 4U : 8U) << length;
    }
}

TEST_F(SlcMeshTest, FileWithoutWallsIsAnEmptyMeshOfNoSize)
{
    for (const QByteArray& layers :
         {QByteArray(), slcEnd(), slcLayer(3, QByteArray(), 0), slcLayer(3, slcBoundary({{1, 1}}), 1)}) {
        const Parsed result = parsed(withLayers(layers));
        EXPECT_EQ(result.key, QString());
        EXPECT_TRUE(result.triples.empty());
        EXPECT_EQ(logMessages(), QStringList({"23 ", "133 "}));
    }
}

struct Thickness {
    std::vector<SlcParts::Entry> table;
    float z;
    float thickness;
};

TEST_F(SlcMeshTest, ThicknessIsThatOfTheLastEntryReached)
{
    const Thickness cases[] = {
        {{{0, 0.5F}}, 0, 0.5F},
        {{{0, 0.5F}}, 7, 0.5F},
        {{{1, 0.5F}}, 0.9F, 0.1F},
        {{{0, 0.5F}, {2, 0.25F}, {4, 0.75F}}, 1.9F, 0.5F},
        {{{0, 0.5F}, {2, 0.25F}, {4, 0.75F}}, 2, 0.25F},
        {{{0, 0.5F}, {2, 0.25F}, {4, 0.75F}}, 100, 0.75F},
        // An entry above the layer ends the walk, even if lower ones follow.
        {{{0, 0.5F}, {9, 0.25F}, {1, 0.75F}}, 3, 0.5F},
        // One that cannot be compared does not.
        {{{NAN, 0.5F}, {1, 0.75F}}, 3, 0.75F},
        {{{0, -2}}, 3, -2},
    };
    for (const Thickness& test : cases) {
        SlcParts parts;
        parts.samplingTable = test.table;
        const QByteArray content = slcHead(parts) + slcLayer(test.z, slcBoundary(kSquare), 1);
        EXPECT_EQ(parsed(content).triples.at(0)[2], test.z + test.thickness) << test.z;
        expectAsReference(content);
    }
}

// A head whose text has this length before its end mark.
SlcParts headOf(int length)
{
    SlcParts parts;
    parts.head = QByteArray(length, 'h');
    return parts;
}

TEST_F(SlcMeshTest, HeadEndsAtItsMarkInOneOfThreeReads)
{
    struct Head {
        int length;
        bool found;
    };
    // A mark that straddles two reads of 1024 bytes is not found. After 2045 the table is too far.
    for (const Head& head : {Head{0, true}, Head{1, true}, Head{1021, true}, Head{1022, false}, Head{1023, false},
                             Head{1024, true}, Head{2045, true}, Head{2046, false}, Head{2047, false},
                             Head{2048, false}, Head{3069, false}, Head{4000, false}}) {
        const QByteArray content = slcHead(headOf(head.length)) + squareLayer() + QByteArray(4096, '\0');
        const Parsed result = parsed(content);
        EXPECT_EQ(result.key, head.found ? QString() : QString("fileHeadErr")) << head.length;
        EXPECT_EQ(logMessages().mid(1), QStringList({head.found ? "133 " : "130  throw "})) << head.length;
        expectAsReference(content);
    }
}

TEST_F(SlcMeshTest, HeadMayNotHoldAZeroByteBeforeItsMark)
{
    SlcParts parts;
    parts.head = QByteArray("h\0h", 3);
    EXPECT_EQ(parsed(slcHead(parts) + squareLayer()).key, "fileHeadErr");
    // In a read before that of the mark it may.
    parts.head = QByteArray("\0", 1) + QByteArray(1100, 'h');
    EXPECT_EQ(parsed(slcHead(parts) + squareLayer()).key, QString());
}

TEST_F(SlcMeshTest, SearchEndsWithTheFile)
{
    for (const int bytes : {0, 1, 2, 500, 1024, 2047, 2048, 2049, 5000})
        EXPECT_EQ(parsed(QByteArray(bytes, 'x')).key, "fileHeadErr") << bytes;
    const QByteArray head = slcHead(headOf(40));
    for (int bytes = 0; bytes < 40 + 3 + 256 + 1; ++bytes)
        EXPECT_EQ(parsed(head.left(bytes)).key, "fileHeadErr") << bytes;
}

TEST_F(SlcMeshTest, EmptyTableIsAnError)
{
    SlcParts parts;
    parts.samplingTable.clear();
    EXPECT_EQ(parsed(slcHead(parts) + squareLayer()).key, "fileHeadErr");
    EXPECT_EQ(logMessages(), QStringList({"23 ", "130  throw "}));
}

TEST_F(SlcMeshTest, CutTableIsAnError)
{
    SlcParts parts;
    parts.samplingTable.assign(255, {0, 0.5F});
    const QByteArray head = slcHead(parts);
    EXPECT_EQ(parsed(head.left(head.size() - 1)).key, "fileReadLess");
    EXPECT_EQ(logMessages(), QStringList({"23 ", "74  throw "}));
    EXPECT_EQ(parsed(head).key, QString());
}

TEST_F(SlcMeshTest, SizesOutOfRangeAreErrors)
{
    SlcParts flat;
    flat.samplingTable = {{0, 0}};
    // The zero normal is a point, too: all lies at the origin.
    EXPECT_EQ(parsed(slcHead(flat) + slcLayer(0, slcBoundary({{0, 0}, {0, 0}}), 1)).key, "fileIsErr");
    EXPECT_EQ(logMessages(), QStringList({"23 ", "124  throw "}));
    EXPECT_EQ(parsed(withLayers(slcLayer(5, slcBoundary({{0, 0}, {10000.001F, 0}}), 1))).key, "fileIsErr");
    EXPECT_EQ(parsed(withLayers(slcLayer(5, slcBoundary({{0, 0}, {10000, 0}}), 1))).key, QString());
    // Far off, the normals make the model too large.
    EXPECT_EQ(parsed(withLayers(slcLayer(5, slcBoundary({{10001, 0}, {10002, 0}}), 1))).key, "fileIsErr");
    // The chunk stays with the mesh.
    EXPECT_EQ(parsed(withLayers(slcLayer(5, slcBoundary({{0, 0}, {10001, 0}}), 1))).triples.size(), 12U);
}

TEST_F(SlcMeshTest, FileThatIsTooLargeForTheMemoryIsAnError)
{
    const QByteArray content = withLayers(squareLayer());
    EXPECT_EQ(parsed(content + QByteArray(1000 - content.size(), '\0'), memoryFor999Bytes).key, "fileIsCanNoRender");
    EXPECT_EQ(logMessages(), QStringList({"23 ", "30  throw "}));
    EXPECT_EQ(parsed(content + QByteArray(999 - content.size(), '\0'), memoryFor999Bytes).key, QString());
    // In between, the memory is not asked for.
    EXPECT_EQ(parsed(content, shortMemory).key, QString());
}

TEST_F(SlcMeshTest, HugeCountsInASmallFileEndAtOnce)
{
    QElapsedTimer timer;
    timer.start();
    // All of these announce more points than there are.
    for (const quint32 announced : {0xFFFFFFFFU, 0x7FFFFFFFU, 0xC0000000U, 6U}) {
        EXPECT_EQ(wallsOf(squareLayer() + slcLayer(6, slcBoundary(kSquare, announced), 1)), 4U) << announced;
    }
    EXPECT_EQ(wallsOf(squareLayer() + slcLayer(6, slcBoundary(kSquare, 0xFFFFFFFFU) + squareLayer(), 9)), 4U);
    // More boundaries than there are.
    for (const quint32 announced : {0xFFFFFFFEU, 2U})
        EXPECT_EQ(wallsOf(slcLayer(5, slcBoundary(kSquare), announced)), 4U) << announced;
    EXPECT_LT(timer.elapsed(), kSoon);
}

TEST_F(SlcMeshTest, PointCountWrapsAt32Bits)
{
    // 2^31 + 5 points are announced, 5 are there.
    EXPECT_EQ(wallsOf(slcLayer(5, slcBoundary(kSquare, 0x80000005U), 1) + squareLayer()), 8U);
    // 2^31 points have no bytes, 2^31 + 1 those of one.
    EXPECT_EQ(wallsOf(slcLayer(5, slcBoundary({}, 0x80000000U), 1) + squareLayer()), 4U);
    EXPECT_EQ(wallsOf(slcLayer(5, slcBoundary({{1, 1}}, 0x80000001U), 1) + squareLayer()), 4U);
}

TEST_F(SlcMeshTest, CoordinatesThatAreNotFiniteDoNoHarm)
{
    expectAsReference(withLayers(slcLayer(NAN, slcBoundary(kSquare), 1)));
    for (const float bad : {static_cast<float>(NAN), static_cast<float>(INFINITY), -3e38F})
        expectAsReference(withLayers(slcLayer(5, slcBoundary({{0, 0}, {bad, 1}, {2, bad}, {3, 3}}), 1)));
}

// A zigzag of this number of points.
std::vector<ContourPoint> zigzag(int points)
{
    std::vector<ContourPoint> line;
    line.reserve(static_cast<std::size_t>(points));
    for (int i = 0; i < points; ++i)
        line.push_back({static_cast<float>(i % 1000), static_cast<float>(i / 1000 % 1000)});
    return line;
}

class SlcChunkTest : public SlcMeshTest, public ::testing::WithParamInterface<ChunkLayout>
{
};

TEST_P(SlcChunkTest, ChunksEndInTheMiddleOfATriangle)
{
    const ChunkLayout layout = GetParam();
    const int triplesPerWall = layout == ChunkLayout::Positions ? 6 : 12;
    const int walls = kChunkFloats / 3 / triplesPerWall + 100;
    SourceFile source(withLayers(slcLayer(5, slcBoundary(zigzag(walls + 1)), 1)));
    SlcMesh mesh(layout, muchMemory);
    mesh.parse(source.file());
    ASSERT_EQ(mesh.chunks().size(), 2);
    EXPECT_EQ(mesh.chunks()[0]->size(), kChunkFloats);
    EXPECT_NE(kChunkFloats % (3 * triplesPerWall), 0);
    EXPECT_EQ(mesh.chunks()[1]->size(), 3 * triplesPerWall * walls - kChunkFloats);

    // The wall across the chunks' end is what a mesh of this wall alone has.
    const int wall = kChunkFloats / 3 / triplesPerWall;
    const auto points = zigzag(wall + 2);
    const Parsed alone =
        parsed(withLayers(slcLayer(5, slcBoundary({points[points.size() - 2], points.back()}), 1)), muchMemory, layout);
    for (int i = 0; i < triplesPerWall; ++i) {
        const int at = (wall * triplesPerWall + i) * 3;
        const MeshChunk& chunk = *mesh.chunks()[at < kChunkFloats ? 0 : 1];
        const int offset = at < kChunkFloats ? at : at - kChunkFloats;
        const ReferenceSlc::Point triple{chunk[offset], chunk[offset + 1], chunk[offset + 2]};
        EXPECT_TRUE(nearlyEqual(triple, alone.triples[static_cast<std::size_t>(i)])) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Layouts, SlcChunkTest,
                         ::testing::Values(ChunkLayout::PositionsAndNormals, ChunkLayout::Positions));

TEST_F(SlcMeshTest, WholeTrianglesAreNeverCut)
{
    constexpr int kFloatsPerWall = 18;
    const int walls = kChunkFloats / kFloatsPerWall + 100;
    SourceFile source(withLayers(slcLayer(5, slcBoundary(zigzag(walls + 1)), 1)));
    SlcMesh mesh(ChunkLayout::WholeTriangles, muchMemory);
    mesh.parse(source.file());
    ASSERT_EQ(mesh.chunks().size(), 2);
    EXPECT_EQ(mesh.chunks()[0]->size() % kFloatsPerWall, 0);
    EXPECT_LE(mesh.chunks()[0]->size(), kChunkFloats);
    EXPECT_EQ(mesh.chunks()[0]->size() + mesh.chunks()[1]->size(), kFloatsPerWall * walls);
}

// The box has the normals in it all the same.
TEST_F(SlcMeshTest, WholeTrianglesAreThoseOfTheOtherLayouts)
{
    const QByteArray content = withLayers(slcLayer(50, slcBoundary({{100, 100}, {110, 100}, {110, 120}}), 1));
    const Parsed full = parsed(content);
    const Parsed bare = parsed(content, muchMemory, ChunkLayout::Positions);
    const Parsed whole = parsed(content, muchMemory, ChunkLayout::WholeTriangles);
    EXPECT_EQ(whole.triples, bare.triples);
    EXPECT_EQ(std::tie(whole.min, whole.max), std::tie(full.min, full.max));
    EXPECT_NE(std::tie(whole.min, whole.max), std::tie(bare.min, bare.max));
}

TEST_F(SlcMeshTest, MemoryIsAskedWhenAChunkIsFull)
{
    const int walls = kChunkFloats / 36 + 1;
    const QByteArray content = withLayers(slcLayer(5, slcBoundary(zigzag(walls + 1)), 1));
    const Parsed result = parsed(content, memoryShortAtQuery(2));
    EXPECT_EQ(result.key, "memOutErr");
    EXPECT_EQ(memoryQueries(), 2);
    EXPECT_EQ(result.triples.size(), static_cast<std::size_t>(kChunkFloats / 3));
    EXPECT_EQ(logMessages(), QStringList({"23 ", "198 mem out err", "199  throw "}));
}

TEST_F(SlcMeshTest, SecondParseReplacesTheFirst)
{
    SlcMesh mesh(ChunkLayout::PositionsAndNormals, muchMemory);
    SourceFile first(withLayers(slcLayer(500, slcBoundary({{100, 100}, {200, 200}}), 1)));
    SourceFile second(withLayers(squareLayer()));
    mesh.parse(first.file());
    mesh.parse(second.file());
    EXPECT_EQ(triplesOf(mesh.chunks()), parsed(withLayers(squareLayer())).triples);
    EXPECT_EQ(mesh.boundingBox().second, (Point{30, 40, 5.5F}));
}

TEST_F(SlcMeshTest, FilesWithAnyBytesChangedAreReadAsByTheReference)
{
    const QByteArray content =
        withLayers(squareLayer() + slcLayer(6, slcBoundary(kSquare) + slcBoundary({{1, 1}, {2, 2}}), 2) + slcEnd());
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i) {
        QByteArray changed = content;
        for (int change = 0; change < 3; ++change) {
            const auto at = static_cast<int>(random() % static_cast<unsigned>(changed.size()));
            changed[at] = static_cast<char>(random() % 4 == 0 ? random() % 256 : random() % 3);
        }
        expectAsReference(changed, changed.toHex().constData());
    }
}

} // namespace
} // namespace zr::test
