#pragma once

#include "readers/mesh/fill_estimate.h"
#include "readers/mesh/mesh.h"

#include <memory>

namespace zr
{

/// Makes chunks of triangles whose number is not known in advance, and hands each one that is full to a mesh's list.
///
/// A chunk's memory is reserved from the share of the file that the triangles so far took, so that its peak stays close
/// to the vertex data.
class ChunkWriter
{
public:
    /// `chunks` receives the chunks; a chunk ends after `trianglesPerChunk` triangles of `floatsPerTriangle` floats.
    /// `fileBytes` is the size of the file that the triangles come from.
    ChunkWriter(TriangleChunks& chunks, int floatsPerTriangle, int trianglesPerChunk, qint64 fileBytes);

    /// Room for the floats of one more triangle, all of which must be written before the next call.
    /// `position`: the bytes of the file that came before the triangle.
    float* next(qint64 position)
    {
        if (m_cursor == m_windowEnd)
            openWindow(position);
        float* const room = m_cursor;
        m_cursor += m_floatsPerTriangle;
        return room;
    }

    /// Hands over the last chunk if it holds a triangle.
    void finish();

private:
    void openWindow(qint64 position);
    void handOver(int floats);

    TriangleChunks& m_chunks;
    const int m_floatsPerTriangle;
    const int m_floatsPerChunk;
    FillEstimate m_estimate;

    std::unique_ptr<MeshChunk> m_chunk;
    float* m_cursor = nullptr;
    float* m_windowEnd = nullptr; ///< the chunk's floats exist up to here
    qint64 m_floatsHandedOver = 0;
};

} // namespace zr
