// SPDX-License-Identifier: MIT
#include "host/bitmap_to_image.h"

#include <windows.h>

namespace zr
{

QImage bitmapToImage(HBITMAP__* bitmap)
{
    BITMAP description = {};
    if (!GetObjectW(bitmap, sizeof description, &description))
        return {};
    const bool hasAlpha = description.bmBitsPixel == 32;
    QImage image(description.bmWidth, description.bmHeight, hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (image.isNull())
        return {};
    BITMAPINFO wanted = {};
    wanted.bmiHeader.biSize = sizeof wanted.bmiHeader;
    wanted.bmiHeader.biWidth = image.width();
    wanted.bmiHeader.biHeight = -image.height(); // the top row first
    wanted.bmiHeader.biPlanes = 1;
    wanted.bmiHeader.biBitCount = 32;
    wanted.bmiHeader.biCompression = BI_RGB;
    auto* const screen = GetDC(nullptr);
    const int rows =
        GetDIBits(screen, bitmap, 0, static_cast<UINT>(image.height()), image.bits(), &wanted, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    return rows == image.height() ? image : QImage();
}

} // namespace zr
