#include "readers/mesh/obj_mesh.h"

#include "core/log_file.h"
#include "core/reasons.h"
#include "readers/mesh/chunk_writer.h"
#include "readers/mesh/number_text.h"
#include "readers/mesh/position_list.h"
#include "readers/mesh/text_blocks.h"
#include "readers/mesh/triangle.h"

#include <cstring>

namespace zr
{
namespace
{

constexpr ThrownKey kFileTooLarge{23, "fileIsCanNoRender", reason::kFileTooLarge};
constexpr ThrownKey kMemOut{123, "memOut", reason::kMemoryShort};
constexpr ThrownKey kSizeErr{143, "modelSizeIsErr", reason::kModelSizeWrong};

enum class LineKind { Other, Vertex, Face };

/// What a line of the file says.
struct ObjLine {
    Vec4 point;
    Indices face;
};

const char* lineAfter(const char* text, const char* end)
{
    return static_cast<const char*>(std::memchr(text, '\n', static_cast<std::size_t>(end - text))) + 1;
}

// The line in any form.
LineKind readAnyLine(const char* begin, const char* end, ObjLine& result)
{
    const LineTokens line = splitLine(begin, end);
    if (line.count < kMostTokens)
        return LineKind::Other;
    const auto& tokens = line.tokens;
    if (isKeyword(tokens[0], "v")) {
        result.point = Vec4{toFloat(tokens[1]), toFloat(tokens[2]), toFloat(tokens[3]), 0.0F};
        return LineKind::Vertex;
    }
    if (isKeyword(tokens[0], "f")) {
        result.face = {toIndex(tokens[1]), toIndex(tokens[2]), toIndex(tokens[3]), 0};
        return LineKind::Face;
    }
    return LineKind::Other;
}

// Reads the line at `line` and moves on to the next one.
LineKind takeLine(const char*& line, const char* end, ObjLine& result)
{
    const char* const begin = line;
    const char* const text = plain::skipBlanks(begin);
    const char* behind = nullptr;
    LineKind kind = LineKind::Other;
    if (plain::isBlank(text[1])) {
        if (*text == 'v' || *text == 'V') {
            behind = readPlainPoint(text + 1, result.point);
            kind = LineKind::Vertex;
        } else if (*text == 'f' || *text == 'F') {
            behind = readPlainIndices(text + 1, result.face);
            kind = LineKind::Face;
        }
    }
    if (behind) {
        line = *behind == '\n' ? behind + 1 : lineAfter(behind, end);
        return kind;
    }
    line = lineAfter(text, end);
    // A byte order mark may stand before a keyword.
    return kind != LineKind::Other || *text == '\xEF' ? readAnyLine(begin, line, result) : LineKind::Other;
}

} // namespace

ObjMesh::ObjMesh(bool positionsOnly, MemoryProbe probe) : Mesh(positionsOnly, probe) {}

ObjMesh::~ObjMesh()
{
    clear();
}

void ObjMesh::clear()
{
    Mesh::clear();
    qDeleteAll(m_spareChunks);
    m_spareChunks.clear();
}

FailureLines ObjMesh::failures()
{
    return {kFileTooLarge, kMemOut, kSizeErr};
}

void ObjMesh::parse(QFile& file)
{
    clear();
    setBounds(Bounds());
    const qint64 fileBytes = file.size();
    if (exceedsFreeMemory(static_cast<quint64>(fileBytes)))
        throwKey(kFileTooLarge);

    const int trianglesPerChunk = m_positionsOnly ? kTrianglesPerChunk : kTrianglesPerChunkWithNormals;
    ChunkWriter writer(m_chunks, floatsPerTriangle(), trianglesPerChunk, fileBytes);
    PositionList positions(fileBytes);
    Bounds bounds;
    ObjLine content{};
    TextBlocks blocks(file);
    while (blocks.next()) {
        for (const char* line = blocks.begin(); line != blocks.end();) {
            const LineKind kind = takeLine(line, blocks.end(), content);
            if (kind == LineKind::Other)
                continue;
            const qint64 position = blocks.position() + (line - blocks.begin());
            if (kind == LineKind::Vertex) {
                bounds.include(content.point);
                positions.append(content.point, position);
                continue;
            }
            const Indices& face = content.face;
            const Vec4 a = positions.at(face[0]), b = positions.at(face[1]), c = positions.at(face[2]);
            if (m_positionsOnly)
                writeBareTriangle(writer.next(position), a, b, c);
            else
                writeTriangle(writer.next(position), a, b, c);
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
