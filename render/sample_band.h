// SPDX-License-Identifier: MIT
#pragma once

#include "core/large_pages.h"
#include "core/vec4.h"
#include "render/sample_pattern.h"

#include <QtGlobal>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

namespace zr
{

/// What is seen in one sample.
///
/// Its bits are those of a positive double. The lesser of two such numbers is the nearer sample, of equally near ones
/// that of the first triangle: what is seen is the least, and SIMD instructions compare doubles.
struct Sample {
    quint32 triangle; ///< its number in the stream
    quint32 depth;    ///< from kNearest to kFarthest, where nothing is seen

    static constexpr quint32 kDepthSteps = 0xFFFFFF; ///< 24 bits, as in OpenGL's depth buffers
    static constexpr quint32 kNearest = 0x40000000;
    static constexpr quint32 kFarthest = kNearest + kDepthSteps;

    bool isNothing() const { return depth == kFarthest; }

    /// A triangle at a depth in kDepthSteps.
    void add(int addedDepth, quint32 addedTriangle)
    {
        const Sample added{addedTriangle, kNearest + static_cast<quint32>(addedDepth)};
        if (added.bits() < bits())
            *this = added;
    }

    quint64 bits() const { return quint64{depth} << 32 | triangle; }
};
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "the depth counts more than the triangle's number");

/// A triangle in four samples that lie one after another: `depths`, in Sample::kDepthSteps, where `isHit` holds.
inline void addToSamples(Sample* samples, Int4 depths, quint32 triangle, Vec4Mask isHit)
{
    const auto addToPair = [](Sample* pair, Double2 added) {
        Double2 seen;
        std::memcpy(&seen, pair, sizeof(seen));
        seen = lesserOf(added, seen);
        std::memcpy(pair, &seen, sizeof(seen));
    };
    const Int4 numbers = Int4{} + static_cast<int>(triangle);
    // No sample is NaN, which is not less than anything.
    const Int4 tagged = (depths + static_cast<int>(Sample::kNearest)) | ~isHit;
    addToPair(samples, reinterpret_cast<Double2>(__builtin_shufflevector(numbers, tagged, 0, 4, 1, 5)));
    addToPair(samples + 2, reinterpret_cast<Double2>(__builtin_shufflevector(numbers, tagged, 2, 6, 3, 7)));
}

/// Some rows of a picture's pixels with their samples, from the bottom up. Large pictures are drawn band by band.
class SampleBand
{
public:
    /// Room for `maxRows` rows of `width` pixels.
    SampleBand(const SamplePattern& pattern, int width, int maxRows)
        : m_pattern(pattern), m_width(width), m_samplesPerRow(samplesPerRow()), m_samples(allocated(sizeOf(maxRows)))
    {
    }

    /// Makes this the empty rows from `begin` to before `end`, not more than the constructor's.
    void start(int begin, int end)
    {
        m_begin = begin;
        m_end = end;
        std::fill_n(m_samples.get(), sizeOf(end - begin), Sample{0, Sample::kFarthest});
    }

    int width() const { return m_width; }
    int begin() const { return m_begin; }
    int end() const { return m_end; }

    /// The samples of a row's pixels from left to right, those of each pixel from the bottom up.
    Sample* row(int row) { return m_samples.get() + sizeOf(row - m_begin); }
    const Sample* row(int row) const { return m_samples.get() + sizeOf(row - m_begin); }

    /// In a row of samples.
    Sample& sample(int column, int sampleRow)
    {
        const int samples = m_pattern.samples();
        const auto inRow = std::ptrdiff_t{column} * samples + (sampleRow & (samples - 1));
        return row(sampleRow >> m_pattern.sampleBits())[inRow];
    }

    /// The samples of a group.
    Sample* group(int cell, int groupRow)
    {
        constexpr std::ptrdiff_t groupSize = SamplePattern::kGroupSize;
        const auto inRow =
            std::ptrdiff_t{cell} * m_pattern.samplesPerCell() + groupSize * m_pattern.groupInCell(groupRow);
        return row(m_pattern.cellRowOf(groupRow)) + inRow;
    }

private:
    struct Free {
        void operator()(Sample* samples) const { ::operator delete(samples, std::align_val_t(kLargePageBytes)); }
    };

    /// Without values, for start() to give them.
    static Sample* allocated(std::size_t count)
    {
        const std::size_t bytes = count * sizeof(Sample);
        void* const samples = ::operator new(bytes, std::align_val_t(kLargePageBytes));
        expectSequentialFill(samples, bytes);
        return static_cast<Sample*>(samples);
    }

    /// Of whole groups.
    std::size_t samplesPerRow() const
    {
        constexpr std::size_t size = SamplePattern::kGroupSize;
        const auto samples = static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_pattern.samples());
        return (samples + size - 1) / size * size;
    }

    std::size_t sizeOf(int rows) const { return m_samplesPerRow * static_cast<std::size_t>(rows); }

    const SamplePattern m_pattern;
    int m_width;
    int m_begin = 0;
    int m_end = 0;
    std::size_t m_samplesPerRow;
    std::unique_ptr<Sample[], Free> m_samples;
};

} // namespace zr
