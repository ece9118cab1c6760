// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"

#include <QMatrix4x4>
#include <QRgb>

#include <array>

namespace zr
{

/// The light and the colour that the shaders of OffscreenRenderer give a triangle.
class FlatShading
{
public:
    /// `toClipSpace` is what positions were transformed with, and `normalMatrix` the camera's.
    FlatShading(const QMatrix4x4& toClipSpace, const QMatrix3x3& normalMatrix);

    /// The normal as the light sees it of the triangle with these nine floats. Zero for one without area.
    Vec4 normalOf(const float* positions) const;

    /// The opaque colour of a triangle with that normal at a place, x, y and z from -1 to 1.
    QRgb colourAt(double x, double y, double z, Vec4 normal) const;

private:
    std::array<double, 16> m_fromClip; ///< column by column
    std::array<Vec4, 3> m_normalColumns;
};

} // namespace zr
