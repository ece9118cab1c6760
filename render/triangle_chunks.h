// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QVector>

namespace zr
{

/// A triangle stream cut into chunks, as the mesh readers build it and OffscreenRenderer draws it. Each chunk is a flat
/// run of vertex records, three to a triangle; a record is x, y, z, nx, ny, nz, or x, y, z alone where the renderer
/// computes the normals itself (OffscreenRenderer::usesGeometryShader). The list's maker owns the chunks.
using TriangleChunks = QList<QVector<float>*>;

} // namespace zr
