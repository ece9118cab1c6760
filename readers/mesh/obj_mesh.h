// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/mesh.h"

namespace zr
{

/// The triangles of an OBJ file: its "v" and "f" lines.
class ObjMesh : public Mesh
{
public:
    /// `positionsOnly` is what the renderer reported; without it each vertex record has a normal.
    explicit ObjMesh(bool positionsOnly, MemoryProbe probe = systemMemory) : Mesh(positionsOnly, probe) {}

    /// The failures of parse().
    static FailureLines failures();

    /// Replaces the mesh by that of `file`, which is open and gets closed. Throws an error key, which leaves the
    /// chunks that were complete.
    void parse(QFile& file);
};

} // namespace zr
