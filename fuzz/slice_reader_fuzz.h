#pragma once

#include "core/file_reader_base.h"
#include "fuzz/input_file.h"
#include "fuzz/preview_limits.h"

#include <cstdint>
#include <cstdlib>
#include <new>

namespace zr::fuzz
{

/// The input as a copy that a target may change.
inline QByteArray inputBytes(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

/// Reads the input with a reader; an empty one stands for a file that is gone. What comes out is a square picture or
/// none; what it throws is nothing but the lack of memory that files may claim.
template <typename Reader>
int readPicture(const QByteArray& input)
{
    constexpr int kSmallestSide = 400;
    try {
        Reader reader(input.isEmpty() ? QStringLiteral("/missing") : inputFile(input));
        const QImage picture = reader.getImage();
        const bool isThumbnail = picture.format() == QImage::Format_RGB888 && picture.width() == picture.height() &&
                                 picture.width() >= kSmallestSide;
        if (!picture.isNull() && !isThumbnail)
            std::abort();
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return 0;
}

} // namespace zr::fuzz
