// SPDX-License-Identifier: MIT
#include "core/png_bytes.h"

#include <QBuffer>

#include <algorithm>
#include <limits>

#include <png.h>

namespace zr
{
namespace
{

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "a QRgb is blue, green, red and alpha in memory");

// QImage::convertToFormat() takes threads for pictures of more bytes.
constexpr int kMaxBandBytes = 1 << 16;

// In bands of whole lines, which are small enough for one thread.
QImage converted(const QImage& picture, QImage::Format format)
{
    QImage result(picture.size(), format);
    const int bandLines = std::max(kMaxBandBytes / picture.bytesPerLine(), 1);
    for (int y = 0; y < result.height(); y += bandLines) {
        const int lines = std::min(bandLines, result.height() - y);
        const QImage band(picture.constScanLine(y), picture.width(), lines, picture.bytesPerLine(), picture.format());
        const QImage part = band.convertToFormat(format);
        for (int line = 0; line < part.height(); ++line)
            std::copy_n(part.constScanLine(line), part.bytesPerLine(), result.scanLine(y + line));
    }
    return result;
}

QByteArray written(const QImage& picture, png_uint_32 format)
{
    png_image head{};
    head.version = PNG_IMAGE_VERSION;
    head.width = static_cast<png_uint_32>(picture.width());
    head.height = static_cast<png_uint_32>(picture.height());
    head.format = format;
    head.flags = PNG_IMAGE_FLAG_FAST;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(head);
    if (size > static_cast<png_alloc_size_t>(std::numeric_limits<int>::max()))
        return {};
    QByteArray bytes(static_cast<int>(size), Qt::Uninitialized);
    if (!png_image_write_to_memory(&head, bytes.data(), &size, 0, picture.constBits(), picture.bytesPerLine(), nullptr))
        return {};
    bytes.truncate(static_cast<int>(size));
    return bytes;
}

} // namespace

QByteArray pngBytes(const QImage& picture)
{
    switch (picture.format()) {
    case QImage::Format_RGB888:
        return written(picture, PNG_FORMAT_RGB);
    case QImage::Format_RGB32:
        return written(converted(picture, QImage::Format_RGB888), PNG_FORMAT_RGB);
    case QImage::Format_ARGB32:
        return written(picture, PNG_FORMAT_BGRA);
    case QImage::Format_ARGB32_Premultiplied:
        return written(converted(picture, QImage::Format_ARGB32), PNG_FORMAT_BGRA);
    default: // few previews; they keep their depth and their palette
        QBuffer buffer;
        return picture.save(&buffer, "PNG") ? buffer.data() : QByteArray();
    }
}

} // namespace zr
