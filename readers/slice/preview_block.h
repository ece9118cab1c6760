// SPDX-License-Identifier: MIT
#pragma once

#include "readers/slice/little_endian_block.h"

#include <vector>

namespace zr
{

/// The header of an embedded preview: the picture's size, and where its pixel data lies in the file.
struct DlpPreviewHead_t {
    using Block = LittleEndianBlock<32>;

    DlpPreviewHead_t() = default;
    explicit DlpPreviewHead_t(const Block& block)
        : width(block.field<qint32, 0>()), height(block.field<qint32, 4>()), dataOffset(block.field<qint32, 8>()),
          dataSize(block.field<qint32, 12>())
    {
    }

    qint32 width = 0;      ///< pixels
    qint32 height = 0;     ///< pixels
    qint32 dataOffset = 0; ///< from the start of the file
    qint32 dataSize = 0;   ///< bytes
};

/// A checked preview header and its pixel data.
struct PreviewBlock {
    static constexpr qint32 kMaxSidePx = 10000;

    DlpPreviewHead_t head;             ///< width and height are in 1..kMaxSidePx
    std::vector<uchar> src_RGB_Buffer; ///< head.dataSize bytes
};

} // namespace zr
