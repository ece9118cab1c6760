#pragma once

#include <QByteArray>
#include <QImage>

namespace zr
{

/// The picture of a BMP file that nobody vouches for; a null image when it is none.
///
/// Rows that the file announces but does not hold, and pixels that its compression jumps over, are zero. Qt alone
/// leaves there what the memory held before, which is the host process's own.
QImage pictureOfBmp(const QByteArray& bmp);

/// Makes each pixel of a picture with a palette readable: colours that the palette lacks become black. Qt reads behind
/// the palette's end for them.
void completePalette(QImage& picture);

} // namespace zr
