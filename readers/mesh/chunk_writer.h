// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/mesh.h"

#include <memory>

namespace zr
{

/// Makes chunks of floats whose number is not known in advance, and hands each one that is full to a mesh's list.
///
/// A chunk's memory is reserved for what the caller expects of the rest of its file, so that its peak stays close to
/// the vertex data.
class ChunkWriter
{
public:
    /// `chunks` receives the chunks; a chunk ends after `floatsPerChunk` floats.
    ChunkWriter(TriangleChunks& chunks, int floatsPerChunk) : m_chunks(chunks), m_floatsPerChunk(floatsPerChunk) {}

    /// Room for `floats` more floats in one piece, all of which must be written before the next call; null when the
    /// chunk ends before. `floatsToCome` returns how many floats, these included, may come.
    template <typename FloatsToCome>
    float* next(int floats, FloatsToCome floatsToCome)
    {
        if (m_windowEnd - m_cursor < floats && !openWindow(floats, static_cast<double>(floatsToCome())))
            return nullptr;
        float* const room = m_cursor;
        m_cursor += floats;
        return room;
    }

    /// The floats for which next() gave room.
    qint64 count() const { return m_floatsHandedOver + used(); }

    /// Hands over the chunk if it is full; whether it was. If nobody asks, the next call of next() does it.
    bool endFullChunk()
    {
        const bool isFull = m_cursor == m_windowEnd && used() == m_floatsPerChunk;
        if (isFull)
            finish();
        return isFull;
    }

    /// Hands over the last chunk; false when it holds nothing.
    bool finish();

private:
    qint64 used() const { return m_chunk ? m_cursor - m_chunk->constData() : 0; }
    bool openWindow(int floats, double floatsToCome);

    TriangleChunks& m_chunks;
    const int m_floatsPerChunk;
    std::unique_ptr<MeshChunk> m_chunk;
    float* m_cursor = nullptr;
    float* m_windowEnd = nullptr; ///< the chunk's floats exist up to here
    qint64 m_floatsHandedOver = 0;
};

} // namespace zr
