// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstddef>
#include <vector>

namespace zr
{

/// What is seen in one sample.
struct Sample {
    quint32 depth;    ///< from 0, near, to kFarthest
    quint32 triangle; ///< its number in the stream, or kNothing

    static constexpr quint32 kFarthest = 0xFFFFFF; ///< 24 bits, as in OpenGL's depth buffers
    static constexpr quint32 kNothing = 0xFFFFFFFF;
};

/// Some rows of a picture's samples, from the bottom up. Large pictures are drawn band by band.
class SampleBand
{
public:
    SampleBand(int width, int maxRows) : m_width(width), m_samples(sizeOf(width, maxRows)) {}

    /// Makes this the empty rows from `begin` to before `end`, not more than the constructor's.
    void start(int begin, int end)
    {
        m_begin = begin;
        m_end = end;
        m_samples.assign(sizeOf(m_width, end - begin), {Sample::kFarthest, Sample::kNothing});
    }

    int width() const { return m_width; }
    int begin() const { return m_begin; }
    int end() const { return m_end; }

    Sample* row(int row) { return m_samples.data() + sizeOf(m_width, row - m_begin); }
    const Sample* row(int row) const { return m_samples.data() + sizeOf(m_width, row - m_begin); }

private:
    static std::size_t sizeOf(int width, int rows)
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(rows);
    }

    int m_width;
    int m_begin = 0;
    int m_end = 0;
    std::vector<Sample> m_samples;
};

} // namespace zr
