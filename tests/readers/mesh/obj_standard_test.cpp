// SPDX-License-Identifier: MIT
// OBJ files as other programs write them.

#include "readers/mesh/obj_mesh.h"
#include "readers/mesh/text/text_blocks.h"
#include "tests/readers/mesh/logged_test.h"
#include "tests/readers/mesh/mesh_files.h"
#include "tests/readers/mesh/reference/reference_standard_obj.h"
#include "tests/readers/mesh/text/odd_lines.h"
#include "tests/support/qt_printers.h"

namespace zr::test
{
namespace
{

constexpr int kBlock = TextBlocks::kBlockBytes;

// Five points that differ in all coordinates; a triangle is named by its corners, "abc".
const QByteArray kPoints = "v 10 20 30\nv 11 22 33\nv 12 25 31\nv 13 21 39\nv 14 24 36\n";
const std::vector<Vertex> kCorners = {{10, 20, 30}, {11, 22, 33}, {12, 25, 31}, {13, 21, 39}, {14, 24, 36}};

std::vector<Vertex> named(const char* letters)
{
    std::vector<Vertex> corners;
    for (; *letters != '\0'; ++letters)
        corners.push_back(kCorners.at(static_cast<std::size_t>(*letters - 'a')));
    return corners;
}

class ObjStandardTest : public LoggedTest
{
};

std::vector<Vertex> parsed(const QByteArray& content)
{
    SourceFile source(content);
    ObjMesh mesh(ChunkLayout::PositionsAndNormals, ObjReading::Standard);
    mesh.parse(source.file());
    EXPECT_FALSE(source.file().isOpen());
    return cornersOf(mesh.chunks());
}

// The key with which the parse ends; a null one when it succeeds.
QString failureOf(const QByteArray& content, MemoryProbe probe)
{
    restartLog();
    SourceFile source(content);
    ObjMesh mesh(ChunkLayout::PositionsAndNormals, ObjReading::Standard, probe);
    try {
        mesh.parse(source.file());
    } catch (const QString& key) {
        return key;
    }
    return {};
}

// As it is, with its line end, in lines longer than the buffer, and behind one that ends at the buffer's end.
QList<QByteArray> formsOf(const QByteArray& lines)
{
    QByteArray stretched = lines;
    stretched.replace(" ", QByteArray(kBlock + 10, ' '));
    const QByteArray before = '#' + QByteArray(kBlock - 2 - lines.size() / 2 - kPoints.size(), 'x') + '\n';
    return {lines, lines + '\n', lines + "\r\n", stretched + '\n', before + lines + '\n'};
}

struct FaceLine {
    QByteArray lines;
    const char* triangles;
};

void expectFaces(const std::vector<FaceLine>& cases)
{
    for (const FaceLine& test : cases) {
        const QList<QByteArray> forms = formsOf(test.lines);
        for (const QByteArray& lines : forms)
            EXPECT_EQ(parsed(kPoints + lines), named(test.triangles)) << lines.simplified().constData();
    }
}

TEST_F(ObjStandardTest, FacesCountPointsFromOne)
{
    expectFaces({{"f 1 2 3", "abc"}, {"f 5 3 1", "eca"}, {"f 1 2 3\nf 3 4 5", "abccde"}});
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(ObjStandardTest, NegativeIndicesCountBackFromTheLastPoint)
{
    expectFaces({{"f -1 -2 -3", "edc"}, {"f -5 2 -1", "abe"}, {"f -5/-1/-2 -4//-1 -3/9", "abc"}});
    EXPECT_EQ(parsed("v 1 0 0\nv 0 2 0\nv 0 0 3\nf -3 -2 -1\nv 4 0 0\nf -3 -2 -1\n"),
              (std::vector<Vertex>{{1, 0, 0}, {0, 2, 0}, {0, 0, 3}, {0, 2, 0}, {0, 0, 3}, {4, 0, 0}}));
}

TEST_F(ObjStandardTest, OnlyThePositionOfACornerCounts)
{
    expectFaces({{"f 1/9/9 2/9/9 3/9/9", "abc"},
                 {"f 1//9 2//9 3//9", "abc"},
                 {"f 1/9 2/9 3/9", "abc"},
                 {"f 1 2/7 3//8", "abc"},
                 {"f 1/ 2// 3/x/y", "abc"},
                 {"f 1/0/0 2/99999999999999999999/1 3/-/-", "abc"},
                 {"f 1/12345678/12345678 2/12345678/12345678 3/12345678/12345678 4/12345678/12345678", "abcacd"}});
}

TEST_F(ObjStandardTest, PolygonsAreFansAroundTheirFirstCorner)
{
    expectFaces({{"f 1 2 3 4", "abcacd"},
                 {"f 1 2 3 4 5", "abcacdade"},
                 {"f 5/1 4/1 3/1 2/1 1/1", "edcecbeba"},
                 {"f -1 -2 -3 -4", "edcecb"},
                 {"f 1 2 3 1 2 3", "abcacaaababc"}});
}

TEST_F(ObjStandardTest, FacesThatLackACornerAreLeftOutWhole)
{
    const char* const lines[] = {
        "f",
        "f 1",
        "f 1 2",
        "f 1 2 ",
        "f 0 1 2",
        "f 1 2 0",
        "f 1 2 3 0",
        "f 1 2 6",
        "f 1 2 3 4 5 6",
        "f -6 1 2",
        "f 1 2 -6",
        "f -0 1 2",
        "f 1 2 x",
        "f x 1 2 3",
        "f 1.0 2 3",
        "f 1 2 3e0",
        "f / / /",
        "f 1 / 2 3",
        "f /1 /2 /3",
        "f // // //",
        "f - - -",
        "f + 1 2 3",
        "f --1 2 3",
        "f 1 2 +-3",
        "f 99999999 1 2",
        "f 100000001 1 2",
        "f 2147483649 2 3",
        "f 4294967297 4294967298 4294967299",
        "f 18446744073709551617 2 3",
        "f 1 2 18446744073709551615",
        "f 1 2 -18446744073709551615",
        "f -18446744073709551616 2 3",
        "f 1 2 9999999999999999999999999999999999",
        "f -9223372036854775808 9223372036854775808 1",
    };
    for (const char* line : lines)
        expectFaces({{line, ""}, {QByteArray(line) + "\nf 1 2 3", "abc"}});
    // The points come too late.
    EXPECT_EQ(parsed("f 1 2 3\nf -1 -2 -3\n" + kPoints + "f 1 2 3\n"), named("abc"));
}

TEST_F(ObjStandardTest, BlanksCaseAndLineEndsDoNotMatter)
{
    expectFaces({{"F 1 2 3", "abc"},
                 {"\t f\t1 \t2  3 \t", "abc"},
                 {"f  1  2  3  4", "abcacd"},
                 {"f 01 +2 0000000000000000000000003", "abc"},
                 {"f 00000001 +00000002/1 -00000003", "abc"},
                 {"f 1 2 3 # 4", "abc"},
                 {"f 1 2 3# 4", "abc"},
                 {"f 1 2 3\r\nf 1/1 2/2 3/3\r\nf 3 4 5", "abcabccde"},
                 {"\n\r\n \n\t\r\nf 1 2 3", "abc"},
                 {QByteArray("f 1 2 3\0 4", 10), "abc"},
                 {QByteArray("f 1 2\0 3", 8), ""}});
}

TEST_F(ObjStandardTest, OnlyWholeKeywordsCount)
{
    for (const char* line : {"fo 1 2 3", "f1 2 3", "face 1 2 3", "vt 1 2 3", "vn 1 2 3", "VN 1 2 3", "vp 1 2 3",
                             "v1 2 3", "# f 1 2 3", "#f 1 2 3", "o f 1 2 3", "g", "\\", "f\v1 2 3", "f/1/2/3"})
        expectFaces({{QByteArray(line) + "\nf -1 -2 -3", "edc"}});
}

TEST_F(ObjStandardTest, BackslashContinuesAFace)
{
    expectFaces({{"f 1 2 \\\n3", "abc"},
                 {"f 1 2\\\n3", "abc"},
                 {"f \\\n1 \\\n2 \\\n3 \\\n4", "abcacd"},
                 {"f\\\n1 2 3", "abc"},
                 {"f 1 2 \\\r\n3", "abc"},
                 {"f 1/1/1 2/2/2 \\\n 3/3/3", "abc"},
                 {"f 1 2 3 \\\n\nf 3 4 5", "abccde"},
                 {"f 1 2 3 \\\nf 3 4 5", ""},
                 {"f 1 2 3 4 \\ \nf 3 4 5", "cde"},
                 {"f 1 2 3 # \\\nf 3 4 5", "abccde"},
                 {"# comment \\\nf 1 2 3", "abc"},
                 {"g group\\\nf 1 2 3", "abc"}});
    EXPECT_EQ(parsed(kPoints + "f 1 2 3 \\\n"), named("abc"));
    EXPECT_EQ(parsed(kPoints + "f 1 2 \\\n"), named(""));
    EXPECT_EQ(parsed(kPoints + "f 1 2 3 \\"), named(""));
}

TEST_F(ObjStandardTest, ContinuedFacesMayLieAcrossTheBuffersEnd)
{
    for (int distance = -20; distance < 20; ++distance) {
        const QByteArray comment = '#' + QByteArray(kBlock - kPoints.size() - 2 + distance, 'x') + '\n';
        EXPECT_EQ(parsed(kPoints + comment + "f 1 \\\n 2\\\r\n 3 \\\n 4\nf 3 4 5\n"), named("abcacdcde")) << distance;
    }
}

TEST_F(ObjStandardTest, VertexLinesInAnyForm)
{
    const QByteArray gap(2 * kBlock, ' ');
    const char* const first[] = {
        "v 1 2 3",  "V 1 2 3",         " v\t+1 2.0 3e0 0.5", "v 1 2 3 1.0 0.5 0.25 0.125", "v 1 2 3 # colour",
        "v 1 2 3#", "v 1 \\\n2 \\\n3", "v\\\n1 2 3",         "\xEF\xBB\xBFv 1 2 3"};
    for (const QByteArray line : first) {
        for (const QByteArray& lines : {line + '\n', line + "\r\n", QByteArray(line).replace(" ", gap) + '\n'}) {
            const QByteArray faces = "v 4 5 6\nv 7 8 9\nf 1 -2 -1\n";
            EXPECT_EQ(parsed(lines + faces), (std::vector<Vertex>{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}))
                << line.constData();
        }
    }
}

TEST_F(ObjStandardTest, VertexWithThreeNumbersDoesNotGoOn)
{
    for (const char* end : {"\\\n", " \\\n", " \\\r\n", " 1\\\n", " 1 \\\n"}) {
        const QByteArray lines = QByteArray("v 1 2 3%1v 4 5 6%1v 7 8 9%1").replace("%1", end);
        const std::vector<Vertex> expected = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
        EXPECT_EQ(parsed(lines + "f 1 2 3\n"), expected) << end;
        EXPECT_EQ(parsed(QByteArray(lines).replace(" ", QByteArray(kBlock, ' ')) + "f 1 2 3\n"), expected) << end;
    }
}

TEST_F(ObjStandardTest, NumbersThatAreMissingOrUnreadableAreZero)
{
    const std::pair<QByteArray, Vertex> cases[] = {
        {"v 1 2", {1, 2, 0}},     {"v 1", {1, 0, 0}},         {"v", {0, 0, 0}},
        {"v ", {0, 0, 0}},        {"v 1 x 3", {1, 0, 3}},     {"v 1 2 #3", {1, 2, 0}},
        {"v 1,5 2 3", {0, 2, 3}}, {"v 1 2 1e-60", {1, 2, 0}}, {"v 0x1 .5 5.", {0, 0.5F, 5}},
    };
    for (const auto& [line, point] : cases) {
        EXPECT_EQ(parsed(line + "\nv 4 5 6\nv 7 8 9\nf 1 2 3\n"), (std::vector<Vertex>{point, {4, 5, 6}, {7, 8, 9}}))
            << line.constData();
    }
}

TEST_F(ObjStandardTest, ByteOrderMarkCountsAtTheFilesBeginningOnly)
{
    EXPECT_EQ(parsed("\xEF\xBB\xBF" + kPoints + "f 1 2 3\n"), named("abc"));
    EXPECT_EQ(parsed("\xEF\xBB\xBF" + QByteArray(2 * kBlock, ' ') + kPoints + "f 1 2 3\n"), named("abc"));
    EXPECT_EQ(parsed(kPoints + "\xEF\xBB\xBF"
                               "f 1 2 3\nf 3 4 5\n"),
              named("cde"));
    EXPECT_TRUE(parsed("\xEF\xBB\xBF").empty());
}

TEST_F(ObjStandardTest, LongCommentsAndJunkGiveNothing)
{
    for (const char* begin : {"# ", "g ", "x", "", "vn ", "fo "}) {
        const QByteArray line = begin + QByteArray(" f 1 2 3").repeated(3 * kBlock / 8) + '\n';
        EXPECT_EQ(parsed(kPoints + (*begin == '\0' ? "#" + line : line) + "f 3 4 5\n"), named("cde")) << begin;
    }
    EXPECT_EQ(parsed(kPoints + QByteArray(3 * kBlock, 'f') + "\nf 3 4 5\n"), named("cde"));
    EXPECT_EQ(parsed(kPoints + QByteArray(3 * kBlock, '\0') + "\nf 3 4 5\n"), named("cde"));
    EXPECT_EQ(parsed(kPoints + "f " + QByteArray(3 * kBlock, '1') + " 2 3\nf 3 4 5\n"), named("cde"));
    EXPECT_EQ(parsed(kPoints + "f " + QByteArray(3 * kBlock, '0') + "1 2 3\nf 3 4 5\n"), named("abccde"));
}

// One polygon of the corners 1, 2, 3, 1, 2, 3 and so on.
void expectLargePolygon(int corners, const char* between)
{
    QByteArray line = "f";
    for (int i = 0; i < corners; ++i)
        line += between + QByteArray::number(i % 3 + 1) + "/1/1";
    const std::vector<Vertex> triangles = parsed(kPoints + line + "\nf 3 4 5\n");
    ASSERT_EQ(triangles.size(), 3 * (static_cast<std::size_t>(corners) - 2) + 3);
    for (int i = 2; i < corners; ++i) {
        const auto at = 3 * (static_cast<std::size_t>(i) - 2);
        EXPECT_EQ(triangles[at], kCorners[0]);
        EXPECT_EQ(triangles[at + 1], kCorners[static_cast<std::size_t>((i - 1) % 3)]);
        EXPECT_EQ(triangles[at + 2], kCorners[static_cast<std::size_t>(i % 3)]);
    }
    EXPECT_EQ(parsed(kPoints + line + " 6\nf 3 4 5\n"), named("cde"));
    EXPECT_EQ(parsed(kPoints + line + " 6\\\n 1\nf 3 4 5\n"), named("cde"));
}

TEST_F(ObjStandardTest, PolygonsOfAnySizeAreRead)
{
    for (const int corners : {3, 15, 16, 17, 18, 1000, 20000}) {
        expectLargePolygon(corners, " ");
        expectLargePolygon(corners, " \\\n");
    }
}

TEST_F(ObjStandardTest, OnlyPointsThatFacesUseCountTowardsTheBounds)
{
    SourceFile source("v -50 0 0\n" + kPoints + "v 0 100000 0\nf 2 3 4\nf 1 2 99\n");
    ObjMesh mesh(ChunkLayout::PositionsAndNormals, ObjReading::Standard);
    mesh.parse(source.file());
    EXPECT_EQ(mesh.boundingBox(), std::make_pair(Point{10, 20, 30}, Point{12, 25, 33}));
}

TEST_F(ObjStandardTest, RecordsHaveNormalsUnlessTheRendererMakesThem)
{
    for (const ChunkLayout layout :
         {ChunkLayout::PositionsAndNormals, ChunkLayout::Positions, ChunkLayout::WholeTriangles}) {
        SourceFile source("v 0 0 0\nv 2 0 0\nv 0 3 0\nf 1 2 3\n");
        ObjMesh mesh(layout, ObjReading::Standard);
        mesh.parse(source.file());
        ASSERT_EQ(mesh.chunks().size(), 1);
        const MeshChunk bare = {0, 0, 0, 2, 0, 0, 0, 3, 0};
        const MeshChunk full = {0, 0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 1, 0, 3, 0, 0, 0, 1};
        EXPECT_EQ(*mesh.chunks()[0], layout == ChunkLayout::PositionsAndNormals ? full : bare);
    }
}

TEST_F(ObjStandardTest, FilesWithoutFacesAreEmptyMeshes)
{
    for (const QByteArray& content : {QByteArray(), QByteArray("\n"), QByteArray("\\\n"), QByteArray("f \\"), kPoints,
                                      QByteArray("f 1 2 3\nf -1 -1 -1\n")})
        EXPECT_TRUE(parsed(content).empty()) << content.constData();
}

TEST_F(ObjStandardTest, FailuresAreThoseOfTheServersReading)
{
    const QByteArray faces = kPoints + "f 1 2 3\nf 1 2 4\n";
    EXPECT_EQ(failureOf(faces + QByteArray(1000 - faces.size(), ' '), memoryFor999Bytes), "fileIsCanNoRender");
    EXPECT_EQ(logMessages(), QStringList({"23  throw "}));
    EXPECT_EQ(failureOf(faces, shortMemory), "memOut");
    EXPECT_EQ(logMessages(), QStringList({"123  throw "}));
    EXPECT_EQ(failureOf("v 1 2 3\nv 1 2 3\nf 1 2 1\n", muchMemory), "modelSizeIsErr");
    EXPECT_EQ(logMessages(), QStringList({"143  throw "}));
    EXPECT_EQ(failureOf("v 0 0 0\nv 10000.001 0 0\nf 1 2 1\n", muchMemory), "modelSizeIsErr");
    EXPECT_TRUE(failureOf("v 0 0 0\nv 10000 0 0\nf 1 2 1\n", nearlyShortMemory).isNull());
}

TEST_F(ObjStandardTest, MemoryIsAskedForEachTriangle)
{
    EXPECT_TRUE(failureOf(kPoints + QByteArray("f 1 2 3 4\n").repeated(50), memoryShortAtQuery(1000)).isNull());
    EXPECT_EQ(memoryQueries(), 101);
}

// Its corners are kept until it ends.
TEST_F(ObjStandardTest, MemoryIsAskedForWhileAFaceDoesNotEnd)
{
    const QByteArray face = kPoints + "f" + QByteArray(" 1").repeated(10 * kBlock);
    EXPECT_EQ(failureOf(face + " 0\n", memoryShortAtQuery(15)), "memOut");
    EXPECT_EQ(memoryQueries(), 15);
    EXPECT_TRUE(failureOf(face + " 0\n", memoryShortAtQuery(1000)).isNull());
}

// Compares a file with what the reference makes of it.
void expectAsReference(const QByteArray& content)
{
    SourceFile source(content);
    ObjMesh mesh(ChunkLayout::PositionsAndNormals, ObjReading::Standard);
    bool usable = true;
    try {
        mesh.parse(source.file());
    } catch (const QString& key) {
        EXPECT_EQ(key, "modelSizeIsErr");
        usable = false;
    }
    const ReferenceModel reference = referenceStandardObj(content);
    if (usable) {
        EXPECT_TRUE(sameBits(cornersOf(mesh.chunks()), reference.corners)) << content.toPercentEncoding().constData();
    }
    EXPECT_EQ(mesh.boundingBox(), boundsOf(reference.points)) << content.toPercentEncoding().constData();
}

// Files that are mostly right: each line has the form of some program, and now and then a slip.
class RandomFile
{
public:
    explicit RandomFile(unsigned seed) : m_random(seed) {}

    QByteArray lines(int count)
    {
        QByteArray text = oneIn(8) ? "\xEF\xBB\xBF" : "";
        m_positions = 0;
        while (count-- > 0)
            text += line();
        return text;
    }

private:
    int below(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }
    bool oneIn(int n) { return below(n) == 0; }
    QByteArray pick(const std::vector<QByteArray>& choices) { return choices[m_random() % choices.size()]; }

    QByteArray number() { return QByteArray::number((below(20000) - 10000) / 8.0, "efg"[below(3)], below(10)); }

    QByteArray index()
    {
        if (oneIn(200))
            return pick({"0", "-0", "x", "/", "4294967297", "18446744073709551617", "\\", "#", "1.0", "+1"});
        const int place = 1 + below(m_positions + (oneIn(50) ? 2 : 0));
        return oneIn(4) ? QByteArray::number(-place) : QByteArray::number(place);
    }

    QByteArray corner(int form)
    {
        switch (form) {
        case 0:
            return index();
        case 1:
            return index() + '/' + index();
        case 2:
            return index() + "//" + index();
        default:
            return index() + '/' + index() + '/' + index();
        }
    }

    QByteArray blanks() { return oneIn(20) ? pick({"\t", "  ", " \t", " \\\n", "\\\n ", " \\\r\n"}) : QByteArray(" "); }

    QByteArray line()
    {
        QByteArray text = oneIn(10) ? blanks() : QByteArray();
        if (m_positions < 4 || oneIn(3)) {
            ++m_positions;
            text += pick({"v", "v", "V"});
            for (int numbers = pick({"3", "3", "4", "6", "7"}).toInt(); numbers > 0; --numbers)
                text += blanks() + number();
        } else if (oneIn(8)) {
            text +=
                pick({"vn 0 0 1", "vt 0 1", "# f 1 2 3", "g f", "usemtl v 1 2 3", "", "s 1 \\", "l 1 2", "fo 1 2 3"});
        } else {
            const int form = below(4);
            text += pick({"f", "f", "f", "F"});
            for (int corners = oneIn(3) ? below(40) : 3; corners > 0; --corners)
                text += blanks() + corner(form);
            if (oneIn(10))
                text += pick({" ", " # c", "#", "\t", QByteArray(1, '\0'), " \\"});
        }
        return text + pick({"\n", "\n", "\n", "\r\n", "\n\n"});
    }

    std::mt19937 m_random;
    int m_positions = 0;
};

TEST_F(ObjStandardTest, RandomFilesAreReadAsTheReferenceReadsThem)
{
    RandomFile random(11);
    for (int file = 0; file < 600; ++file)
        expectAsReference(random.lines(60));
    // Runs of many buffers.
    for (int file = 0; file < 2; ++file)
        expectAsReference(random.lines(8000));
}

TEST_F(ObjStandardTest, OddLinesAreReadAsTheReferenceReadsThem)
{
    OddLines odd(12);
    const std::vector<QByteArray> keywords = {"v", "v", "v", "V", "f", "f", "F", "vn", "vt", "g", "f\\", "v\\", "#"};
    for (int file = 0; file < 600; ++file) {
        QByteArray content = odd.lines(20, keywords);
        expectAsReference(kPoints + content.replace(" \n", " \\\n"));
    }
}

// Lines that are longer than the buffer, with all that ends or continues them at any place in it.
TEST_F(ObjStandardTest, LongLinesAreReadAsTheReferenceReadsThem)
{
    RandomFile random(13);
    for (int file = 0; file < 12; ++file) {
        QByteArray content = random.lines(20);
        expectAsReference(content.replace(" ", QByteArray(kBlock / 3 + file * 3000, ' ')));
    }
}

} // namespace
} // namespace zr::test
