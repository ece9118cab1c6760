// SPDX-License-Identifier: MIT
#pragma once

#include "core/log_file.h"
#include "readers/mesh/chunk_writer.h"
#include "readers/mesh/fill_estimate.h"
#include "readers/mesh/triangle.h"

namespace zr
{

/// Writes the triangles that the lines of a text model give into chunks, and watches the memory.
class TriangleWriter
{
public:
    /// `chunks` receives the chunks; a triangle that leaves the memory short throws the key of `memoryOut`.
    TriangleWriter(TriangleChunks& chunks, bool storesNormals, qint64 fileBytes, MemoryWatch watch,
                   const ThrownKey& memoryOut)
        : m_storesNormals(storesNormals), m_floats(storesNormals ? kFloatsPerTriangle : kFloatsPerBareTriangle),
          m_writer(chunks, m_floats * (storesNormals ? kTrianglesPerChunkWithNormals : kTrianglesPerChunk)),
          m_estimate(fileBytes), m_watch(watch), m_memoryOut(memoryOut)
    {
    }

    /// `position`: the bytes of the file up to the triangle.
    void add(Vec4 a, Vec4 b, Vec4 c, qint64 position)
    {
        float* const room = m_writer.next(m_floats, [&] { return m_estimate.itemsToCome(m_writer.count(), position); });
        if (m_storesNormals)
            writeTriangle(room, a, b, c);
        else
            writeBareTriangle(room, a, b, c);
        if (m_watch.isShort())
            throwKey(m_memoryOut);
    }

    /// Hands over the last chunk if it holds a triangle.
    void finish() { m_writer.finish(); }

private:
    /// The text loaders count a triangle's positions and its normals separately.
    static constexpr int kTrianglesPerChunkWithNormals = (kTrianglesPerChunk + 1) / 2;

    const bool m_storesNormals;
    const int m_floats; ///< of each triangle
    ChunkWriter m_writer;
    FillEstimate m_estimate;
    MemoryWatch m_watch;
    const ThrownKey m_memoryOut;
};

} // namespace zr
