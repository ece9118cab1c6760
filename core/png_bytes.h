// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

namespace zr
{

/// The picture as a PNG file, made for speed; empty when that fails. Its pixels are those that QImage::save() writes.
/// On Linux, pictures of 24 or 32 bits are written without threads, unlike there.
QByteArray pngBytes(const QImage& picture);

} // namespace zr
