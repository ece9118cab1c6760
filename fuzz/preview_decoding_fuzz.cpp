// SPDX-License-Identifier: MIT
#include "readers/slice/run_length_preview.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace
{

constexpr std::size_t kHeadBytes = 6;
constexpr quint16 kMaxSide = 150;

qint32 sideFrom(const std::uint8_t* bytes)
{
    return qFromLittleEndian<quint16>(bytes) % kMaxSide + 1;
}

} // namespace

// Six bytes are the picture's size, the minimum side and the shading, the others are the pixel data.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < kHeadBytes)
        return 0;
    zr::PreviewBlock block;
    block.head.width = sideFrom(data);
    block.head.height = sideFrom(data + 2);
    block.head.dataSize = static_cast<qint32>(size - kHeadBytes);
    block.src_RGB_Buffer.assign(data + kHeadBytes, data + size);
    const int minimumSide = data[4];
    const auto shading = data[5] % 2 == 0 ? zr::PreviewShading::Dark : zr::PreviewShading::Light;

    const QImage canvas = zr::decodeRunLengthPreview(block, shading, minimumSide);
    const int side = std::max({block.head.width, block.head.height, minimumSide});
    if (canvas.size() != QSize(side, side) || canvas.format() != QImage::Format_RGB888)
        std::abort();
    return 0;
}
