#pragma once

#include "core/file_reader_base.h"
#include "fuzz/input_file.h"

#include <QtEndian>

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

inline qint64 fieldAt(const QByteArray& input, qint64 offset)
{
    return offset + 4 <= input.size() ? qFromLittleEndian<qint32>(input.constData() + offset) : 0;
}

/// Makes the valid sizes of a preview small ones. A picture of 10000 x 10000 is right, but takes so long that nothing
/// else would be tried. `headOffset` is where the preview's header stands in the file, `behindHead` where the
/// reader looks when that is negative.
inline void limitPreviewSize(QByteArray& input, qint64 headOffset, qint64 behindHead)
{
    constexpr qint32 kMaxValidSide = 10000;
    constexpr qint32 kMaxSide = 600;
    const qint64 head = headOffset < 0 ? behindHead : headOffset;
    for (const qint64 field : {head, head + 4}) {
        const auto side = static_cast<qint32>(fieldAt(input, field));
        if (side > kMaxSide && side <= kMaxValidSide)
            qToLittleEndian(side % kMaxSide + 1, input.data() + field);
    }
}

/// Reads the input with a reader. What comes out is a square picture or none; what it throws is nothing but the lack
/// of memory that files may claim.
template <typename Reader>
int readPicture(const QByteArray& input)
{
    constexpr int kSmallestSide = 400;
    try {
        Reader reader(inputFile(input));
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
