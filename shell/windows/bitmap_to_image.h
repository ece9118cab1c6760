#pragma once

#include <QImage>

#include <windows.h>

namespace zr
{

/// The pixels of a bitmap as a client of the server sees them: the alpha channel of a 32-bit bitmap is kept and not
/// taken as premultiplied, other bitmaps are opaque. A null image when the handle is no bitmap.
QImage bitmapToImage(HBITMAP bitmap);

} // namespace zr
