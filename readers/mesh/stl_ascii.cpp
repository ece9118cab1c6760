// SPDX-License-Identifier: MIT
// The text form of STL: only its "vertex" lines matter, every third one completes a triangle.

#include "core/log_contract.h"
#include "core/reasons.h"
#include "readers/mesh/stl_mesh.h"
#include "readers/mesh/text/line_tokenizer.h"
#include "readers/mesh/text/reference_number.h"
#include "readers/mesh/text/scalar_number.h"
#include "readers/mesh/text/text_blocks.h"
#include "readers/mesh/triangle_writer.h"

namespace zr
{
namespace
{

constexpr ThrownKey kFileTooLarge{190, key::kModelTooLarge, reason::kFileTooLarge};
constexpr ThrownKey kMemOut{290, key::kMemoryOut, reason::kMemoryShort};
constexpr ThrownKey kSizeErr{320, key::kModelSize, reason::kModelSizeWrong};

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
    const quint64 first = word(text);
    if (first == wordOf("endloop\n"))
        return text + 8;
    if (first == wordOf("endfacet"))
        text += 8;
    else if (first == wordOf("outer lo") && text[8] == 'o' && text[9] == 'p')
        text += 10;
    return lineAfter(text, end);
}

// "vertex" in any case at `text`, with a blank after it. A byte with 0x20 added is a lower-case letter only if it was
// that letter in one case or the other: "V" is 0x56 and "v" is 0x76.
bool startsWithVertex(const char* text)
{
    constexpr quint64 lowerCase = wordOf("        ");
    constexpr quint64 sixBytes = 0x0000FFFFFFFFFFFF;
    return ((word(text) | lowerCase) & sixBytes) == (wordOf("vertex  ") & sixBytes) && isBlank(text[6]);
}

// The vertex in a line of any form; false when the line has none.
bool readVertexLine(const char* begin, const char* end, Vec4& vertex)
{
    const QByteArrayList tokens = tokensOf(begin, end);
    if (tokens.size() < kMaxTokens || tokens[0].compare("vertex", Qt::CaseInsensitive) != 0)
        return false;
    vertex = reference::toPoint(tokens);
    return true;
}

// Takes the line at `line` and moves on to the next one. Whether the line was a vertex.
bool takeLine(const char*& line, const char* end, Vec4& vertex)
{
    const char* const begin = line;
    const char* const text = skipBlanks(begin);
    // There may be a byte order mark before a keyword; any other first byte of a vertex line is a V.
    const bool mayBeVertex = *text == 'v' || *text == 'V' || *text == '\xEF';
    if (!mayBeVertex) {
        line = lineAfterKeyword(text, end);
        return false;
    }
    if (startsWithVertex(text)) {
        if (const char* const read = readPoint(text + 7, vertex)) {
            line = lineAfter(read, end);
            return true;
        }
    }
    line = lineAfter(text, end);
    return readVertexLine(begin, line, vertex);
}

// The first line, which may be as long as the file, never counts.
void skipFirstLine(QFile& file)
{
    file.seek(0);
    std::array<char, 1024> piece{};
    qint64 bytes = 0;
    do {
        bytes = file.readLine(piece.data(), static_cast<qint64>(piece.size()));
    } while (bytes > 0 && piece[static_cast<std::size_t>(bytes) - 1] != '\n');
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
    requireMemoryFor(static_cast<quint64>(fileBytes), kFileTooLarge);
    skipFirstLine(file);

    TriangleWriter triangles(m_chunks, storesNormals(), fileBytes, memoryWatch(), kMemOut);
    Bounds bounds;
    std::array<Vec4, 3> corners{};
    std::size_t corner = 0;
    TextBlocks blocks(file);
    while (blocks.next()) {
        for (const char* line = blocks.begin(); line != blocks.end();) {
            if (!takeLine(line, blocks.end(), corners[corner]) || ++corner < 3)
                continue;
            corner = 0;
            for (const Vec4 vertex : corners)
                bounds.include(vertex);
            triangles.add(corners[0], corners[1], corners[2], blocks.position() + (line - blocks.begin()));
        }
    }
    setBounds(bounds);
    requireUsableExtent(kSizeErr);
    triangles.finish();
    file.close();
}

} // namespace zr
