// SPDX-License-Identifier: MIT
#pragma once

#include "core/failure_line.h"
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

// A triangle is three records; a record is a position and the triangle's normal, or the position alone.
constexpr int kFloatsPerPoint = 3;
constexpr int kFloatsPerRecord = 2 * kFloatsPerPoint;
constexpr int kFloatsPerTriangle = 3 * kFloatsPerRecord;

/// Where the loaders cut a chunk, in bytes of vertex data; bounds each single allocation.
constexpr qint64 kChunkBytes = 104857600;

/// The triangle figure that STL and OBJ cut by: what kChunkBytes hold at 36 bytes, the size without normals.
constexpr int kTrianglesPerChunk = 2912711;

struct Bounds;

/// The triangle stream of one model file: what StlMesh, ObjMesh and SlcMesh share. Used by one thread at a time.
///
/// Each parse() is start(), requireMemoryFor(), what the format's lines or records give to a ChunkWriter and to Bounds,
/// setBounds() and the check of the model's size.
class Mesh
{
public:
    Q_DISABLE_COPY(Mesh)

    /// The chunks in drawing order; they stay the mesh's own.
    const TriangleChunks& chunks() const { return m_chunks; }

    /// The min and the max corner.
    std::pair<Point, Point> boundingBox() const { return {m_min, m_max}; }

    bool positionsOnly() const { return m_positionsOnly; }

    /// Frees the chunks. The bounds stay as they are.
    void clear();

protected:
    /// `layout` is what the renderer draws.
    Mesh(ChunkLayout layout, MemoryProbe probe);
    ~Mesh();

    /// Makes this the mesh of a file without content.
    void start();

    void setBounds(const Bounds& bounds);

    /// Throws the failure's key when `bytes` reach two thirds of the free memory.
    void requireMemoryFor(quint64 bytes, const ThrownKey& failure) const;

    /// Whether so much of the memory is in use that loading must stop. A loop over triangles asks its memoryWatch().
    bool memoryIsShort() const { return m_probe().areShort(); }
    MemoryWatch memoryWatch() const { return MemoryWatch(m_probe); }

    /// The max side of the box; negative infinity when no point was seen.
    float maxExtent() const;

    /// Whether a model of this size can be shown. A mesh without points and one with a NaN extent count as such.
    static bool extentIsUsable(float extent);

    /// Throws the failure's key when the model's size cannot be shown.
    void requireUsableExtent(const ThrownKey& failure) const;

    bool storesNormals() const { return !m_positionsOnly && !m_leavesNormalsOut; }
    int floatsPerTriangle() const { return storesNormals() ? kFloatsPerTriangle : kFloatsPerBareTriangle; }

    TriangleChunks m_chunks;
    TriangleChunks m_spareChunks; ///< a second list, which is emptied with the first and which no parse fills
    bool m_positionsOnly;
    Point m_max{};
    Point m_min{};

private:
    const bool m_leavesNormalsOut; ///< whatever m_positionsOnly says, and without any other consequence
    MemoryProbe m_probe;
};

} // namespace zr
