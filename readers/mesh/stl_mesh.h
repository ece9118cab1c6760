// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/mesh.h"

namespace zr
{

class ChunkWriter;

/// The triangles of an STL file, text or binary.
class StlMesh : public Mesh
{
public:
    /// Every parse makes ChunkLayout::PositionsAndNormals of ChunkLayout::Positions.
    explicit StlMesh(ChunkLayout layout, MemoryProbe probe = systemMemory) : Mesh(layout, probe) {}

    /// The failures of parse().
    static FailureLines failures();

    /// Replaces the mesh by that of `file`, which is opened when it is not open and closed afterwards. A failure is
    /// logged and leaves a mesh without chunks; the result then is false.
    bool parse(QFile& file);

    /// The count that a binary file announces.
    quint64 triangleCount() const { return m_triangleCount; }

private:
    /// Sets m_isAscii when the first line of the file contains "solid" and the second one "facet".
    /// Throws "fileOpenErr".
    void detectAscii(QFile& file);

    /// Both throw an error key.
    void parseAscii(QFile& file);
    void parseBinary(QFile& file);

    /// Those of parseAscii().
    static FailureLines asciiFailures();

    void startParse();
    void readBatches(QFile& file);
    void readBatch(QFile& file, int triangles, ChunkWriter& writer, Bounds& bounds);

    bool m_isAscii = false;
    quint64 m_triangleCount = 0;
};

} // namespace zr
