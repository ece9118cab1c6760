#include "readers/mesh/chunk_writer.h"

#include <algorithm>

namespace zr
{
namespace
{

// The chunk grows by so many triangles at a time: few enough that zeroing them happens in the processor's cache.
constexpr int kTrianglesPerWindow = 64;

} // namespace

ChunkWriter::ChunkWriter(TriangleChunks& chunks, int floatsPerTriangle, int trianglesPerChunk, qint64 fileBytes)
    : m_chunks(chunks), m_floatsPerTriangle(floatsPerTriangle), m_floatsPerChunk(floatsPerTriangle * trianglesPerChunk),
      m_estimate(fileBytes)
{
}

void ChunkWriter::openWindow(qint64 position)
{
    int used = m_chunk ? m_chunk->size() : 0;
    if (used == m_floatsPerChunk) {
        handOver(used);
        used = 0;
    }
    if (!m_chunk) {
        m_chunk = std::make_unique<MeshChunk>();
        if (m_floatsHandedOver == 0)
            m_estimate.start(position);
    }
    const int end = std::min(used + kTrianglesPerWindow * m_floatsPerTriangle, m_floatsPerChunk);
    if (end > m_chunk->capacity()) {
        const double capacity = m_estimate.capacityFor(used, static_cast<double>(m_floatsHandedOver) + used, position);
        m_chunk->reserve(
            std::clamp(static_cast<int>(std::min<double>(capacity, m_floatsPerChunk)), end, m_floatsPerChunk));
        expectSequentialFill(m_chunk->data(), static_cast<std::size_t>(m_chunk->capacity()) * sizeof(float));
    }
    m_chunk->resize(end);
    m_cursor = m_chunk->data() + used;
    m_windowEnd = m_chunk->data() + end;
}

void ChunkWriter::handOver(int floats)
{
    m_chunk->resize(floats);
    m_chunks.append(m_chunk.get());
    m_chunk.release(); // NOLINT(bugprone-unused-return-value): the list owns it now
    m_floatsHandedOver += floats;
    m_cursor = nullptr;
    m_windowEnd = nullptr;
}

void ChunkWriter::finish()
{
    if (m_chunk)
        handOver(static_cast<int>(m_cursor - m_chunk->constData()));
}

} // namespace zr
