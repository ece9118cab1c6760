// SPDX-License-Identifier: MIT
#include "readers/mesh/obj_mesh.h"

#include "core/log_contract.h"
#include "core/reasons.h"
#include "readers/mesh/position_list.h"
#include "readers/mesh/text/line_tokenizer.h"
#include "readers/mesh/text/reference_number.h"
#include "readers/mesh/text/scalar_number.h"
#include "readers/mesh/text/text_blocks.h"
#include "readers/mesh/triangle_writer.h"

namespace zr
{
namespace
{

constexpr ThrownKey kFileTooLarge{23, key::kModelTooLarge, reason::kFileTooLarge};
constexpr ThrownKey kMemOut{123, key::kMemoryOut, reason::kMemoryShort};
constexpr ThrownKey kSizeErr{143, key::kModelSize, reason::kModelSizeWrong};

enum class LineKind { Other, Vertex, Face };

/// The content of a line.
struct ObjLine {
    Vec4 point;
    Indices face;
};

// The line in any form.
LineKind readAnyLine(const char* begin, const char* end, ObjLine& result)
{
    const QByteArrayList tokens = tokensOf(begin, end);
    if (tokens.size() < kMaxTokens)
        return LineKind::Other;
    if (tokens[0].compare("v", Qt::CaseInsensitive) == 0) {
        result.point = reference::toPoint(tokens);
        return LineKind::Vertex;
    }
    if (tokens[0].compare("f", Qt::CaseInsensitive) == 0) {
        result.face = reference::toIndices(tokens);
        return LineKind::Face;
    }
    return LineKind::Other;
}

// Reads the line at `line` and moves on to the next one.
LineKind takeLine(const char*& line, const char* end, ObjLine& result)
{
    const char* const begin = line;
    const char* const text = skipBlanks(begin);
    const char* read = nullptr;
    LineKind kind = LineKind::Other;
    if (isBlank(text[1])) {
        if (*text == 'v' || *text == 'V') {
            read = readPoint(text + 1, result.point);
            kind = LineKind::Vertex;
        } else if (*text == 'f' || *text == 'F') {
            read = readIndices(text + 1, result.face);
            kind = LineKind::Face;
        }
    }
    line = lineAfter(read ? read : text, end);
    // There may be a byte order mark before a keyword.
    const bool isOdd = !read && (kind != LineKind::Other || *text == '\xEF');
    return isOdd ? readAnyLine(begin, line, result) : kind;
}

} // namespace

FailureLines ObjMesh::failures()
{
    return {kFileTooLarge, kMemOut, kSizeErr};
}

void ObjMesh::parse(QFile& file)
{
    start();
    const qint64 fileBytes = file.size();
    requireMemoryFor(static_cast<quint64>(fileBytes), kFileTooLarge);

    TriangleWriter triangles(m_chunks, storesNormals(), fileBytes, memoryWatch(), kMemOut);
    PositionList positions(fileBytes);
    Bounds bounds;
    ObjLine content{};
    TextBlocks blocks(file);
    while (blocks.next()) {
        for (const char* line = blocks.begin(); line != blocks.end();) {
            const LineKind kind = takeLine(line, blocks.end(), content);
            const qint64 position = blocks.position() + (line - blocks.begin());
            if (kind == LineKind::Vertex) {
                bounds.include(content.point);
                positions.append(content.point, position);
            } else if (kind == LineKind::Face) {
                const Indices& face = content.face;
                triangles.add(positions.at(face[0]), positions.at(face[1]), positions.at(face[2]), position);
            }
        }
    }
    setBounds(bounds);
    requireUsableExtent(kSizeErr);
    triangles.finish();
    file.close();
}

} // namespace zr
