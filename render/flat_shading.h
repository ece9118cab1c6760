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

    /// Where four triangles are seen, lane by lane.
    struct Places {
        std::array<const float*, 4> positions; ///< nine floats each
        Vec4 x, y, z;                          ///< from -1 to 1
    };

    /// Their opaque colours.
    std::array<QRgb, 4> coloursAt(const Places& places) const;

private:
    Double4 cosinesAt(const Places& places) const;

    std::array<double, 12> m_toLight; ///< row by row: takes a place to the way to the light, times what is positive
    std::array<Vec4, 3> m_normalColumns;
};

} // namespace zr
