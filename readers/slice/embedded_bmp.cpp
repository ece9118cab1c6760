// SPDX-License-Identifier: MIT
#include "readers/slice/embedded_bmp.h"

#include <QBuffer>
#include <QImageReader>

#include <cstdlib>
#include <memory>
#include <new>

namespace zr
{
namespace
{

constexpr char kFormat[] = "bmp";

// Rows as Qt lays them out. The memory comes from calloc(), since the file may announce any size: pages that no
// row reaches are never touched. A null picture where Qt makes none of that size.
QImage zeroedPicture(QSize size, QImage::Format format)
{
    const qint64 bitsPerLine = qint64{size.width()} * QImage::toPixelFormat(format).bitsPerPixel();
    const auto bytesPerLine = static_cast<int>((bitsPerLine + 31) / 32 * 4);
    std::unique_ptr<void, void (*)(void*)> bytes(
        std::calloc(static_cast<std::size_t>(size.height()), static_cast<std::size_t>(bytesPerLine)), std::free);
    if (!bytes)
        throw std::bad_alloc();
    QImage picture(static_cast<uchar*>(bytes.get()), size.width(), size.height(), bytesPerLine, format, std::free,
                   bytes.get());
    if (!picture.isNull())
        static_cast<void>(bytes.release()); // the picture owns them now
    return picture;
}

} // namespace

// Qt fills the picture that it is given when that has the file's size and format, and replaces any other.
QImage pictureOfBmp(const QByteArray& bmp)
{
    QBuffer buffer;
    buffer.setData(bmp);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, kFormat);
    const QSize announced = reader.size(); // the height is negative where the top row comes first
    const QSize size(announced.width(), std::abs(announced.height()));
    if (size.isEmpty())
        return QImage();
    const QImage::Format format = reader.imageFormat();
    QImage picture = zeroedPicture(size, format);
    if (!reader.read(&picture))
        return QImage();
    if (picture.format() == format)
        return picture;

    // Qt does not announce transparency. Alpha is never shown, but missing pixels would be.
    const QImage::Format actualFormat = picture.format();
    picture = QImage();
    picture = zeroedPicture(size, actualFormat);
    buffer.seek(0);
    return QImageReader(&buffer, kFormat).read(&picture) ? picture : QImage();
}

void completePalette(QImage& picture)
{
    if (picture.colorCount() > 0)
        picture.setColorCount(1 << picture.depth());
}

} // namespace zr
