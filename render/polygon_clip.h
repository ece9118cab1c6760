// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"

#include <array>
#include <cstddef>

namespace zr
{

/// A corner in OpenGL's clip space: what is seen has -w <= x, y, z <= w.
using ClipCorner = std::array<double, 4>;

/// The part of a triangle that is seen: a convex polygon with the triangle's orientation.
class ClippedPolygon
{
public:
    /// Each of the six planes adds at most one corner, were there no rounding.
    static constexpr std::size_t kMaxCorners = 16;

    /// 0 when nothing of the triangle is seen.
    std::size_t size() const { return m_size; }
    const ClipCorner& operator[](std::size_t i) const { return m_corners[i]; }

    void append(const ClipCorner& corner)
    {
        if (m_size < kMaxCorners)
            m_corners[m_size++] = corner;
    }

private:
    std::array<ClipCorner, kMaxCorners> m_corners{};
    std::size_t m_size = 0;
};

/// A triangle with a corner that is not finite is not seen.
ClippedPolygon clipped(Vec4 a, Vec4 b, Vec4 c);

} // namespace zr
