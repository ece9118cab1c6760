// SPDX-License-Identifier: MIT
#pragma once

#include <QRgb>

namespace zr
{

/// The colour schemes in which embedded previews are shown: a flat background, and one shade for each luminance.
/// Stored colours are never shown, so all thumbnails of a scheme look alike.
enum class PreviewShading {
    Dark, ///< greys on dark blue
    Light ///< blues on grey
};

/// The colour of the canvas and of pixels in the preview's own background colour. Opaque.
QRgb previewBackground(PreviewShading shading);

/// The shade of a pixel of that luminance. Opaque. Channels past 255 wrap around.
QRgb previewShade(PreviewShading shading, quint32 luminance);

/// Channels may have up to 16 bits; the result is in the channels' own range.
constexpr quint32 previewLuminance(quint32 red, quint32 green, quint32 blue)
{
    return (11 * red + 16 * green + 5 * blue) >> 5;
}

} // namespace zr
