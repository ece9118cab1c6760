// SPDX-License-Identifier: MIT
#pragma once

#include <array>

namespace zr
{

/// Steps per pixel in which corners are placed, as in OpenGL drivers.
constexpr int kSubpixels = 256;
constexpr int kSubpixelBits = 8;

/// Where in a pixel its samples lie. With n of them, a pixel has n rows and n columns of equal size, and each row and
/// each column has one sample in its middle, so that edges near either direction get all n steps. A single sample is
/// the pixel's centre.
///
/// A picture of n samples per pixel thus is one of n times as many rows, each of which has a single sample per pixel
/// at the same offset.
class SamplePattern
{
public:
    static constexpr int kMaxSamples = 16;

    /// `samples` per pixel: 1, 2, 4, 8 or 16.
    constexpr explicit SamplePattern(int samples)
        : m_samples(samples), m_sampleBits(__builtin_ctz(static_cast<unsigned>(samples))), m_offsets(offsets(samples))
    {
    }

    constexpr int samples() const { return m_samples; }

    /// Their number is 2 to the power of this.
    constexpr int sampleBits() const { return m_sampleBits; }

    /// Where a sample lies, in steps from the picture's lower left corner. Rows are counted over all pixels.
    constexpr int xOf(int column, int row) const { return column * kSubpixels + offsetInRow(row); }
    constexpr int yOf(int row) const { return row * rowHeight() + rowHeight() / 2; }

    /// The first row whose samples are not below `y`.
    constexpr int rowFrom(int y) const { return (y + rowHeight() / 2 - 1) >> rowBits(); }

    /// The first column whose sample in that row is not left of `x`.
    constexpr int columnFrom(int x, int row) const { return (x - offsetInRow(row) + kSubpixels - 1) >> kSubpixelBits; }

    static constexpr bool isPossible(int samples)
    {
        return samples >= 1 && samples <= kMaxSamples && (samples & (samples - 1)) == 0;
    }

private:
    using Offsets = std::array<int, kMaxSamples>;

    // The columns are those of Direct3D's standard multisample patterns, row by row.
    static constexpr Offsets columns(int samples)
    {
        switch (samples) {
        case 2:
            return {0, 1};
        case 4:
            return {1, 3, 0, 2};
        case 8:
            return {7, 2, 4, 0, 6, 3, 1, 5};
        case 16:
            return {1, 8, 4, 11, 15, 7, 3, 12, 0, 9, 5, 13, 2, 10, 6, 14};
        default:
            return {0};
        }
    }

    static constexpr Offsets offsets(int samples)
    {
        Offsets result = columns(samples);
        const int width = kSubpixels / samples;
        for (int& offset : result)
            offset = offset * width + width / 2;
        return result;
    }

    constexpr int rowBits() const { return kSubpixelBits - m_sampleBits; }
    constexpr int rowHeight() const { return 1 << rowBits(); }
    constexpr int offsetInRow(int row) const { return m_offsets[static_cast<unsigned>(row & (m_samples - 1))]; }

    int m_samples;
    int m_sampleBits;
    Offsets m_offsets; ///< of a pixel's rows
};

} // namespace zr
