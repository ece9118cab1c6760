// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/mesh.h"
#include "readers/mesh/obj_reading.h"

namespace zr
{

/// The triangles of an OBJ file: its "v" and "f" lines.
class ObjMesh : public Mesh
{
public:
    explicit ObjMesh(ChunkLayout layout, ObjReading reading = ObjReading::Server, MemoryProbe probe = systemMemory)
        : Mesh(layout, probe), m_reading(reading)
    {
    }

    /// The failures of parse().
    static FailureLines failures();

    /// Replaces the mesh by that of `file`, which is open and gets closed. Throws an error key, which leaves the
    /// chunks that were complete.
    void parse(QFile& file);

private:
    template <typename Lines>
    void parseLines(QFile& file);

    const ObjReading m_reading;
};

} // namespace zr
