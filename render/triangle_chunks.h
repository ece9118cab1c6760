// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QVector>

namespace zr
{

/// What the vertex records of a renderer's chunks hold.
enum class ChunkLayout {
    PositionsAndNormals, ///< x, y, z, nx, ny, nz; each record of a triangle has the same normal
    Positions,           ///< x, y, z
    WholeTriangles,      ///< x, y, z; no triangle straddles two chunks, and the box is that of PositionsAndNormals
};

/// Floats of a triangle without normals.
constexpr int kFloatsPerBareTriangle = 9;

/// A triangle stream cut into chunks, as the mesh readers build it and a MeshRenderer draws it. Each chunk is a flat
/// run of vertex records, three to a triangle. The list's maker owns the chunks.
using TriangleChunks = QList<QVector<float>*>;

} // namespace zr
