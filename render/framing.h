// SPDX-License-Identifier: MIT
#pragma once

#include <QMatrix4x4>

namespace zr
{

class ClipTransform;
class TriangleStream;

/// Moves and scales clip space in the picture's plane so that the triangles that are seen, by `toClipSpace`, fill the
/// picture but for a margin on each side. The identity when there are none.
///
/// The eye stays where it is: the picture is the part of a larger one that has the model.
QMatrix4x4 framingMatrix(const ClipTransform& toClipSpace, const TriangleStream& stream);

} // namespace zr
