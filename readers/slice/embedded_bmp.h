// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

namespace zr
{

/// The picture of an untrusted BMP file; a null image when the bytes are not one.
///
/// Rows that the file announces but does not hold, and pixels that its compression jumps over, are zero. Qt alone
/// leaves there what the memory of the host process held before.
QImage pictureOfBmp(const QByteArray& bmp);

/// Makes each pixel of a picture with a palette readable: colours that the palette lacks become black. Qt reads past
/// the palette's end for them.
void completePalette(QImage& picture);

} // namespace zr
