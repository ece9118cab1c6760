// SPDX-License-Identifier: MIT
#include "readers/mesh/obj_mesh.h"

#include "core/log_contract.h"
#include "core/reasons.h"
#include "readers/mesh/obj_server_lines.h"
#include "readers/mesh/obj_standard_lines.h"
#include "readers/mesh/triangle_writer.h"

namespace zr
{
namespace
{

constexpr ThrownKey kFileTooLarge{23, key::kModelTooLarge, reason::kFileTooLarge};
constexpr ThrownKey kMemOut{123, key::kMemoryOut, reason::kMemoryShort};
constexpr ThrownKey kSizeErr{143, key::kModelSize, reason::kModelSizeWrong};

} // namespace

FailureLines ObjMesh::failures()
{
    return {kFileTooLarge, kMemOut, kSizeErr};
}

void ObjMesh::parse(QFile& file)
{
    if (m_reading == ObjReading::Server)
        parseLines<ServerObjLines>(file);
    else
        parseLines<StandardObjLines>(file);
}

template <typename Lines>
void ObjMesh::parseLines(QFile& file)
{
    start();
    const qint64 fileBytes = file.size();
    requireMemoryFor(static_cast<quint64>(fileBytes), kFileTooLarge);

    TriangleWriter triangles(m_chunks, storesNormals(), fileBytes, memoryWatch(), kMemOut);
    PositionList positions(fileBytes);
    Bounds bounds;
    Lines lines;
    TextBlocks blocks(file, Lines::kLongLines);
    while (blocks.next()) {
        for (const char* line = lines.enter(blocks, positions.count()); line != blocks.end();) {
            const ObjLineKind kind = lines.take(line, blocks.end(), positions.count());
            const qint64 position = blocks.position() + (line - blocks.begin());
            if (kind == ObjLineKind::Vertex) {
                if (Lines::kAllPositionsCount)
                    bounds.include(lines.point());
                positions.append(lines.point(), position);
            } else if (kind == ObjLineKind::Face) {
                lines.forEachTriangle(positions, [&](Vec4 a, Vec4 b, Vec4 c) {
                    if (!Lines::kAllPositionsCount) {
                        for (const Vec4 corner : {a, b, c})
                            bounds.include(corner);
                    }
                    triangles.add(a, b, c, position);
                });
            } else if (kind == ObjLineKind::Unfinished && memoryIsShort()) {
                throwKey(kMemOut);
            }
        }
    }
    setBounds(bounds);
    requireUsableExtent(kSizeErr);
    triangles.finish();
    file.close();
}

} // namespace zr
