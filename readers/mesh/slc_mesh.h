// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/chunk_writer.h"
#include "readers/mesh/triangle.h"

#include <optional>
#include <vector>

namespace zr
{

class ByteBlocks;

/// The walls along the contours of an SLC file: each piece of a contour becomes two triangles, from the height of its
/// layer up by the layer's thickness. There are neither floors nor ceilings.
class SlcMesh : public Mesh
{
public:
    explicit SlcMesh(ChunkLayout layout, MemoryProbe probe = systemMemory) : Mesh(layout, probe) {}

    /// The failures of parse().
    static FailureLines failures();

    /// Replaces the mesh by that of `file`, which is open and gets closed. Throws an error key, which leaves the
    /// chunks that were complete.
    void parse(QFile& file);

private:
    /// The thickness of layers from a height on.
    struct SamplingEntry {
        float minimumZ;
        float thickness;
    };

    /// The lower and the upper end of a layer's walls.
    struct Layer {
        float bottom;
        float top;
    };

    void readHead(QFile& file);
    void readLayers(QFile& file);
    bool readBoundary(ByteBlocks& bytes, Layer layer);
    bool addWalls(ByteBlocks& bytes, qint64 points, Layer layer);
    Layer layerAt(float z) const;

    // These append to the chunk. They return whether it could not be done, which never happens: memory that runs out
    // is thrown.
    bool addWall(Vec4 from, Vec4 to, Layer layer);
    bool addTriangle(Vec4 a, Vec4 b, Vec4 c);
    bool addVertex(Vec4 vertex);

    float* nextFloats(int floats)
    {
        return m_writer->next(floats, [this] { return m_floatsToCome; });
    }
    void endChunkIfFull();

    std::vector<SamplingEntry> m_samplingTable;
    Bounds m_bounds;
    std::optional<ChunkWriter> m_writer; ///< of the current parse
    qint64 m_floatsToCome = 0;           ///< no more than these can come from the rest of the file
};

} // namespace zr
