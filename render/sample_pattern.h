// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"

#include <algorithm>
#include <array>
#include <cstddef>

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
///
/// Samples are looked at in groups of four, which lie one after another in memory: four rows of a pixel, or whole
/// pixels side by side when they have fewer. A cell is what a pixel's groups are in: one pixel, or as many as a group
/// has.
class SamplePattern
{
public:
    static constexpr int kMaxSamples = 16;

    /// `samples` per pixel: 1, 2, 4, 8 or 16.
    explicit SamplePattern(int samples)
        : m_samples(samples), m_sampleBits(__builtin_ctz(static_cast<unsigned>(samples))), m_offsets(offsets(samples))
    {
        for (int i = 0; i < kGroupSize; ++i)
            m_rowsInGroup[i] = i % rowsPerGroup();
        for (int i = 0; i < samplesPerCell(); ++i) {
            Places& group = m_groups[static_cast<unsigned>(i / kGroupSize)];
            group.x[i % kGroupSize] = static_cast<float>(xOf(i / samples, i % samples));
            group.y[i % kGroupSize] = static_cast<float>(yOf(i % samples));
        }
    }

    constexpr int samples() const { return m_samples; }

    /// Their number is 2 to the power of this.
    constexpr int sampleBits() const { return m_sampleBits; }

    /// Where a sample lies, in steps from the picture's lower left corner. Rows are counted over all pixels.
    constexpr int xOf(int column, int row) const { return column * kSubpixels + offsetInRow(row); }
    constexpr int yOf(int row) const { return row * rowHeight() + rowHeight() / 2; }

    constexpr int rowHeight() const { return 1 << m_rowBits; }

    /// The first row whose samples are not below `y`.
    constexpr int rowFrom(int y) const { return (y + rowHeight() / 2 - 1) >> m_rowBits; }
    Int4 rowsFrom(Int4 y) const { return (y + (rowHeight() / 2 - 1)) >> m_rowBits; }

    /// The same for four samples, and the first columns whose samples in those rows are not left of `x`.
    Int4 xsOf(Int4 columns, Int4 rows) const { return (columns << kSubpixelBits) + offsetsInRows(rows); }
    Int4 ysOf(Int4 rows) const { return (rows << m_rowBits) + rowHeight() / 2; }
    Int4 columnsFrom(Int4 x, Int4 rows) const { return (x - offsetsInRows(rows) + (kSubpixels - 1)) >> kSubpixelBits; }

    static constexpr int kGroupSize = 4;

    /// Cells lie side by side.
    constexpr int cellWidthBits() const { return m_cellWidthBits; }
    constexpr int samplesPerCell() const { return m_samplesPerCell; }

    /// Each row of cells has so many rows of groups.
    constexpr int groupsHigh() const { return 1 << m_groupsHighBits; }

    /// How many rows of samples a group has, and the row of groups that a row of samples is in.
    constexpr int rowsPerGroup() const { return 1 << m_rowsPerGroupBits; }
    constexpr int groupRowOf(int row) const { return row >> m_rowsPerGroupBits; }

    /// The rows of samples that those of a group are in.
    Int4 rowsOf(int groupRow) const { return m_rowsInGroup + (groupRow << m_rowsPerGroupBits); }

    /// The row of cells that a row of groups is in, and which of its rows it is.
    constexpr int cellRowOf(int groupRow) const { return groupRow >> m_groupsHighBits; }
    constexpr int groupInCell(int groupRow) const { return groupRow & (groupsHigh() - 1); }

    /// Where the samples of a group lie, from the lower left corner of its cell.
    struct Places {
        Vec4 x, y;
    };
    const Places& placesInCell(int groupRow) const { return m_groups[static_cast<unsigned>(groupInCell(groupRow))]; }

    static constexpr bool isPossible(int samples)
    {
        return samples >= 1 && samples <= kMaxSamples && (samples & (samples - 1)) == 0;
    }

private:
    /// Of a pixel's rows.
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
        const Offsets columnOf = columns(samples);
        const int width = kSubpixels / samples;
        Offsets result{};
        for (std::size_t i = 0; i < static_cast<std::size_t>(samples); ++i)
            result[i] = columnOf[i] * width + width / 2;
        return result;
    }

    static constexpr int kGroupSizeBits = 2;

    constexpr int offsetInRow(int row) const { return m_offsets[static_cast<unsigned>(row & (m_samples - 1))]; }

    Int4 offsetsInRows(Int4 rows) const
    {
        const Int4 inPixel = rows & (m_samples - 1);
        const auto offset = [&](int lane) { return m_offsets[static_cast<unsigned>(inPixel[lane])]; };
        return Int4{offset(0), offset(1), offset(2), offset(3)};
    }

    int m_samples;
    int m_sampleBits;
    int m_rowBits = kSubpixelBits - m_sampleBits;
    int m_rowsPerGroupBits = std::min(m_sampleBits, kGroupSizeBits);
    int m_groupsHighBits = m_sampleBits - m_rowsPerGroupBits;
    int m_cellWidthBits = kSubpixelBits + kGroupSizeBits - m_rowsPerGroupBits;
    int m_samplesPerCell = kGroupSize << m_groupsHighBits;
    Offsets m_offsets;
    Int4 m_rowsInGroup{};
    std::array<Places, kMaxSamples / kGroupSize> m_groups{}; ///< of the first cell
};

} // namespace zr
