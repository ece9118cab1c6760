// SPDX-License-Identifier: MIT
#pragma once

#include "render/triangle_chunks.h"

#include <algorithm>
#include <vector>

namespace zr
{

/// The triangles of chunks of the layout WholeTriangles by their numbers in the stream.
class TriangleStream
{
public:
    /// A chunk, which must outlive the stream.
    struct Run {
        const float* positions; ///< nine floats a triangle
        quint32 first;          ///< the number of its first triangle
        quint32 count;
    };

    /// Triangles beyond kMaxTriangles are left out.
    explicit TriangleStream(const TriangleChunks& chunks)
    {
        quint32 first = 0;
        for (const QVector<float>* chunk : chunks) {
            const auto whole = static_cast<quint32>(chunk->size() / kFloatsPerBareTriangle);
            const quint32 count = std::min(whole, kMaxTriangles - first);
            m_runs.push_back({chunk->constData(), first, count});
            first += count;
        }
    }

    static constexpr quint32 kMaxTriangles = 0xFFFFFFFE;

    const std::vector<Run>& runs() const { return m_runs; }

    /// The nine floats of a triangle of the stream.
    const float* positionsOf(quint32 triangle) const
    {
        const auto after = std::upper_bound(m_runs.begin(), m_runs.end(), triangle,
                                            [](quint32 number, const Run& run) { return number < run.first; });
        const Run& run = *(after - 1);
        return run.positions + std::size_t{triangle - run.first} * kFloatsPerBareTriangle;
    }

private:
    std::vector<Run> m_runs;
};

} // namespace zr
