// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

namespace zr::samples
{

/// Turned parts of the kind that people print. Each slice format's sample shows one of its own.
enum class Solid { Rook, Vase, Pawn, Goblet, Bottle, SpinningTop };

/// Draws the solid, lit from the upper left, in the middle of a plain background. QImage::Format_RGB32.
/// The same bytes come out on every machine: no fonts, no painter, nothing but the four operations and square roots.
QImage drawSolid(Solid solid, int width, int height);

} // namespace zr::samples
