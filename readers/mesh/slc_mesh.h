#pragma once

#include "core/failure_line.h"
#include "readers/mesh/mesh.h"
#include "readers/mesh/triangle.h"

#include <memory>
#include <vector>

namespace zr
{

class ByteBlocks;

/// The walls along the contours of an SLC file: each piece of a contour becomes two triangles, from the height of its
/// layer up by the layer's thickness. There are neither floors nor ceilings.
class SlcMesh : public Mesh
{
public:
    /// `positionsOnly` is what the renderer reported; without it each vertex record has a normal.
    explicit SlcMesh(bool positionsOnly, MemoryProbe probe = systemMemory);

    /// The failures of parse().
    static FailureLines failures();

    /// Replaces the mesh by that of `file`, which is open and gets closed. Throws an error key, which leaves the
    /// chunks that were complete.
    void parse(QFile& file);

private:
    /// From which height on layers have which thickness.
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

    // These append to the chunk. They return whether it could not be done, which never happens.
    bool addWall(Vec4 from, Vec4 to, Layer layer);
    bool addTriangle(Vec4 a, Vec4 b, Vec4 c);
    bool addVertex(Vec4 vertex);

    void openWindow();
    void handOverChunk();
    void endChunkIfFull();

    std::vector<SamplingEntry> m_samplingTable;
    Bounds m_bounds;

    std::unique_ptr<MeshChunk> m_chunk;
    float* m_cursor = nullptr;
    float* m_windowEnd = nullptr; ///< the chunk's floats exist up to here
    qint64 m_floatsToCome = 0;    ///< no more than these can come from the rest of the file
};

} // namespace zr
