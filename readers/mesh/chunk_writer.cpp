// SPDX-License-Identifier: MIT
#include "readers/mesh/chunk_writer.h"

#include "core/large_pages.h"
#include "readers/mesh/fill_estimate.h"

namespace zr
{
namespace
{

// The chunk grows by this number of floats at a time: few enough that zeroing them happens in the processor's cache.
constexpr int kFloatsPerWindow = 128 * kFloatsPerTriangle;

} // namespace

// Lets the chunk's floats exist some way beyond the cursor, but not beyond the chunk's limit.
bool ChunkWriter::openWindow(int floats, double floatsToCome)
{
    endFullChunk();
    const int begin = static_cast<int>(used());
    if (m_floatsPerChunk - begin < floats)
        return false;
    if (!m_chunk)
        m_chunk = std::make_unique<MeshChunk>();
    const int window = std::min(begin + std::max(floats, kFloatsPerWindow), m_floatsPerChunk);
    if (begin + floats > m_chunk->capacity()) {
        const double capacity = std::min<double>(grownCapacity(begin, floatsToCome), m_floatsPerChunk);
        m_chunk->reserve(std::max(window, static_cast<int>(capacity)));
        expectSequentialFill(m_chunk->data(), static_cast<std::size_t>(m_chunk->capacity()) * sizeof(float));
    }
    const int end = std::min(window, m_chunk->capacity());
    m_chunk->resize(end);
    m_cursor = m_chunk->data() + begin;
    m_windowEnd = m_chunk->data() + end;
    return true;
}

bool ChunkWriter::finish()
{
    const int floats = static_cast<int>(used());
    if (floats == 0)
        return false;
    m_chunk->resize(floats);
    m_chunks.append(m_chunk.get());
    m_chunk.release(); // NOLINT(bugprone-unused-return-value): the list owns it now
    m_floatsHandedOver += floats;
    m_cursor = nullptr;
    m_windowEnd = nullptr;
    return true;
}

} // namespace zr
