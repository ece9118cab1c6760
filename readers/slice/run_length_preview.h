// SPDX-License-Identifier: MIT
#pragma once

#include "readers/slice/preview_block.h"
#include "readers/slice/preview_shading.h"

#include <QImage>

namespace zr
{

/// Decodes run-length coded 16-bit colour words onto a square canvas in QImage::Format_RGB888.
///
/// The canvas' side is the maximum of width, height and `minimumSide`; the picture lies in its middle. Pixels that the
/// data does not paint stay in the background colour, and pixels past the picture's last row go on below it as far as
/// the canvas reaches. `block` must come from loadPreviewBlock(). Throws std::bad_alloc when the canvas does not fit
/// into memory.
QImage decodeRunLengthPreview(const PreviewBlock& block, PreviewShading shading, int minimumSide);

} // namespace zr
