// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

struct HBITMAP__;

namespace zr
{

/// The pixels of a bitmap as a client of the server sees them: the alpha channel of a 32-bit bitmap is kept and not
/// treated as premultiplied, other bitmaps are opaque. `bitmap` is an HBITMAP, which stays the caller's; a null image
/// when it is not a bitmap.
QImage bitmapToImage(HBITMAP__* bitmap);

} // namespace zr
