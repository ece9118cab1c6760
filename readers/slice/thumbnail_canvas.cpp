// SPDX-License-Identifier: MIT
#include "readers/slice/thumbnail_canvas.h"

#include <algorithm>
#include <new>

namespace zr
{
namespace
{

constexpr std::ptrdiff_t kBytesPerPixel = 3;

} // namespace

QImage fittedToThumbnail(const QImage& picture)
{
    if (picture.isNull())
        return picture;
    const QImage fitted =
        picture.scaled(kThumbnailSidePx, kThumbnailSidePx, Qt::KeepAspectRatio, Qt::FastTransformation);
    if (fitted.isNull())
        throw std::bad_alloc();
    return fitted;
}

QImage centredOnThumbnail(const QImage& picture, QRgb background)
{
    const int side = std::max({picture.width(), picture.height(), kThumbnailSidePx});
    const int left = (side - picture.width()) / 2;
    const int top = (side - picture.height()) / 2;
    QImage canvas(side, side, QImage::Format_RGB888);
    if (canvas.isNull())
        throw std::bad_alloc();
    canvas.fill(background);
    for (int y = 0; y < picture.height(); ++y) {
        uchar* bytes = canvas.scanLine(top + y) + left * kBytesPerPixel;
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb colour = picture.pixel(x, y);
            *bytes++ = static_cast<uchar>(qRed(colour));
            *bytes++ = static_cast<uchar>(qGreen(colour));
            *bytes++ = static_cast<uchar>(qBlue(colour));
        }
    }
    return canvas;
}

} // namespace zr
