#pragma once

#include "readers/mesh/memory_probe.h"
#include "render/triangle_chunks.h"

#include <QFile>
#include <QVector>

#include <array>
#include <utility>

namespace zr
{

/// x, y, z in the units of the file.
using Point = std::array<float, 3>;

/// One of TriangleChunks. A triangle may straddle two of them.
using MeshChunk = QVector<float>;

constexpr int kFloatsPerPoint = 3;
constexpr int kFloatsPerTriangle = 18;
constexpr int kFloatsPerBareTriangle = 9; ///< positions only

/// Where the loaders cut a chunk, in bytes of vertex data; bounds each single allocation.
constexpr qint64 kChunkBytes = 104857600;

/// The triangle figure that STL and OBJ cut by: what kChunkBytes hold at 36 bytes, the size without normals.
constexpr int kTrianglesPerChunk = 2912711;

/// The same where the text loaders count a triangle's positions and its normals separately.
constexpr int kTrianglesPerChunkWithNormals = (kTrianglesPerChunk + 1) / 2;

struct Bounds;

/// The triangle stream of one model file: what StlMesh, ObjMesh and SlcMesh share. Used by one thread at a time.
class Mesh
{
public:
    Mesh(const Mesh&) = delete;
    Mesh& operator=(const Mesh&) = delete;

    /// The chunks in drawing order; they stay the mesh's own.
    const TriangleChunks& chunks() const { return m_chunks; }

    /// The min and the max corner.
    std::pair<Point, Point> boundingBox() const { return {m_min, m_max}; }

    bool positionsOnly() const { return m_positionsOnly; }

    /// Frees the chunks. The bounds stay as they are.
    void clear();

protected:
    /// `positionsOnly`: the renderer derives the normals itself.
    Mesh(bool positionsOnly, MemoryProbe probe);
    ~Mesh();

    void setBounds(const Bounds& bounds);

    /// Whether `bytes` reach two thirds of the free memory.
    bool exceedsFreeMemory(quint64 bytes) const;

    /// Whether so much of the memory is in use that loading must stop.
    bool memoryIsShort(MemoryQuery query = MemoryQuery::Single) const;

    /// The largest side of the box; negative infinity when no point was seen.
    float largestExtent() const;

    /// Whether a model of this size can be shown. A mesh without points and one with a NaN extent count as such.
    static bool extentIsUsable(float extent);

    int floatsPerTriangle() const { return m_positionsOnly ? kFloatsPerBareTriangle : kFloatsPerTriangle; }

    TriangleChunks m_chunks;
    bool m_positionsOnly;
    Point m_max{};
    Point m_min{};

private:
    MemoryProbe m_probe;
};

} // namespace zr
