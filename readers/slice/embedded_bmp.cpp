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

// Rows as Qt lays them out. The memory comes from calloc(), since the size is the file's word: pages that no row
// reaches are never touched.
QImage zeroedPicture(QSize size, QImage::Format format, int bytesPerLine)
{
    std::unique_ptr<void, void (*)(void*)> bytes(
        std::calloc(static_cast<std::size_t>(size.height()), static_cast<std::size_t>(bytesPerLine)), std::free);
    if (!bytes)
        throw std::bad_alloc();
    QImage picture(static_cast<uchar*>(bytes.get()), size.width(), size.height(), bytesPerLine, format, std::free,
                   bytes.get());
    if (picture.isNull())
        throw std::bad_alloc();
    static_cast<void>(bytes.release()); // the picture owns them now
    return picture;
}

} // namespace

// Qt keeps a picture that it is given when that has the file's size and format, which a first reading tells.
QImage pictureOfBmp(const QByteArray& bmp)
{
    QImage picture;
    if (!picture.loadFromData(bmp, kFormat))
        return QImage();
    const QSize size = picture.size();
    const QImage::Format format = picture.format();
    const int bytesPerLine = picture.bytesPerLine();
    picture = QImage();

    picture = zeroedPicture(size, format, bytesPerLine);
    QBuffer buffer;
    buffer.setData(bmp);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, kFormat);
    return reader.read(&picture) ? picture : QImage();
}

void completePalette(QImage& picture)
{
    if (picture.colorCount() > 0)
        picture.setColorCount(1 << picture.depth());
}

} // namespace zr
