// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

namespace zr
{

/// Side of the square picture that a slice reader makes, in pixels.
constexpr int kThumbnailSidePx = 400;

/// The picture scaled, without smoothing, to the maximum size that fits the thumbnail with its aspect ratio. A null
/// picture stays null. Throws std::bad_alloc when there is no memory.
QImage fittedToThumbnail(const QImage& picture);

/// The picture in the middle of a square of at least kThumbnailSidePx in that colour; an odd pixel goes to the right or
/// bottom margin. QImage::Format_RGB888; alpha is dropped. A null picture gives the plain square. Throws
/// std::bad_alloc when there is no memory.
QImage centredOnThumbnail(const QImage& picture, QRgb background);

} // namespace zr
