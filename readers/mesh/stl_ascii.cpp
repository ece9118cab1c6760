// The text form of STL: only its "vertex" lines matter, every third one completes a triangle.

#include "core/log_file.h"
#include "core/reasons.h"
#include "readers/mesh/chunk_writer.h"
#include "readers/mesh/number_text.h"
#include "readers/mesh/stl_mesh.h"
#include "readers/mesh/text_blocks.h"
#include "readers/mesh/triangle.h"

#include <cstring>

namespace zr
{
namespace
{

constexpr ThrownKey kFileTooLarge{190, "fileIsCanNoRender", reason::kFileTooLarge};
constexpr ThrownKey kMemOut{290, "memOut", reason::kMemoryShort};
constexpr ThrownKey kSizeErr{320, "modelSizeIsErr", reason::kModelSizeWrong};

const char* lineAfter(const char* text, const char* end)
{
    return static_cast<const char*>(std::memchr(text, '\n', static_cast<std::size_t>(end - text))) + 1;
}

constexpr quint64 wordOf(const char (&text)[9])
{
    quint64 bytes = 0;
    for (unsigned i = 0; i < 8; ++i)
        bytes |= quint64{static_cast<unsigned char>(text[i])} << (8 * i);
    return bytes;
}

// The line after that at `text`, known at once for the three lines of which every file is full.
const char* lineAfterKeyword(const char* text, const char* end)
{
    const quint64 first = plain::word(text);
    const char* behind = text;
    if (first == wordOf("endloop\n"))
        return text + 8;
    if (first == wordOf("endfacet"))
        behind += 8;
    else if (first == wordOf("outer lo") && text[8] == 'o' && text[9] == 'p')
        behind += 10;
    return *behind == '\n' ? behind + 1 : lineAfter(behind, end);
}

// "vertex" in any case at `text`, with a blank behind it.
bool startsWithVertex(const char* text)
{
    constexpr quint64 lowerCase = plain::kEveryByte * 0x20;
    constexpr quint64 sixBytes = 0x0000FFFFFFFFFFFF;
    return ((plain::word(text) | lowerCase) & sixBytes) == 0x786574726576 && plain::isBlank(text[6]);
}

// The vertex in a line of any form; false when the line has none.
bool readVertexLine(const char* begin, const char* end, Vec4& vertex)
{
    const LineTokens line = splitLine(begin, end);
    if (line.count < kMostTokens || !isKeyword(line.tokens[0], "vertex"))
        return false;
    vertex = Vec4{toFloat(line.tokens[1]), toFloat(line.tokens[2]), toFloat(line.tokens[3]), 0.0F};
    return true;
}

// Takes the line at `line` and moves on to the next one. Whether the line was a vertex.
bool takeLine(const char*& line, const char* end, Vec4& vertex)
{
    const char* const begin = line;
    const char* const text = plain::skipBlanks(begin);
    // A byte order mark may stand before a keyword; any other first byte of a vertex line is a V.
    const bool mayBeVertex = *text == 'v' || *text == 'V' || *text == '\xEF';
    if (mayBeVertex && startsWithVertex(text)) {
        if (const char* const behind = readPlainPoint(text + 7, vertex)) {
            line = *behind == '\n' ? behind + 1 : lineAfter(behind, end);
            return true;
        }
    }
    if (!mayBeVertex) {
        line = lineAfterKeyword(text, end);
        return false;
    }
    line = lineAfter(text, end);
    return readVertexLine(begin, line, vertex);
}

} // namespace

FailureLines StlMesh::asciiFailures()
{
    return {kFileTooLarge, kMemOut, kSizeErr};
}

void StlMesh::parseAscii(QFile& file)
{
    startParse();
    const qint64 fileBytes = file.size();
    if (exceedsFreeMemory(static_cast<quint64>(fileBytes)))
        throwKey(kFileTooLarge);
    file.seek(0);

    ChunkWriter writer(m_chunks, floatsPerTriangle(), kTrianglesPerChunkWithNormals, fileBytes);
    Bounds bounds;
    std::array<Vec4, 3> corners{};
    std::size_t corner = 0;
    TextBlocks blocks(file);
    bool firstLine = true;
    while (blocks.next()) {
        const char* line = blocks.begin();
        const char* const end = blocks.end();
        if (firstLine)
            line = lineAfter(line, end);
        firstLine = false;
        while (line != end) {
            if (!takeLine(line, end, corners[corner]))
                continue;
            if (++corner < 3)
                continue;
            corner = 0;
            for (const Vec4 vertex : corners)
                bounds.include(vertex);
            writeTriangle(writer.next(blocks.position() + (line - blocks.begin())), corners[0], corners[1], corners[2]);
            if (memoryIsShort(MemoryQuery::InLoop))
                throwKey(kMemOut);
        }
    }
    setBounds(bounds);
    if (!extentIsUsable(largestExtent()))
        throwKey(kSizeErr);
    writer.finish();
    file.close();
}

} // namespace zr
