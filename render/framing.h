// SPDX-License-Identifier: MIT
#pragma once

#include <QMatrix4x4>

namespace zr
{

class TriangleStream;

/// Moves and scales clip space in the picture's plane so that the triangles that are seen fill the
/// picture but for a margin on each side. The identity when there are none. `camera` and `model` are those of a
/// ClipTransform.
///
/// The eye stays where it is: the picture is the part of a larger one that has the model.
QMatrix4x4 framingMatrix(const QMatrix4x4& camera, const QMatrix4x4& model, const TriangleStream& stream);

} // namespace zr
