// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "render/sample_pattern.h"

namespace zr
{

/// Four triangles at a time, lane by lane, that are no wider than a pixel, so that they have one sample a row at most,
/// and have few rows. Of very fine meshes nearly all are such.
class TinyTriangles
{
public:
    static constexpr int kMaxWidth = kSubpixels; ///< in steps
    static constexpr int kMaxRows = 8;           ///< of samples

    /// Counter-clockwise corners with whole numbers x and y, lane by lane.
    template <typename Corners>
    TinyTriangles(const Corners& a, const Corners& b, const Corners& c) : m_ab(a, b), m_bc(b, c), m_ca(c, a)
    {
    }

    /// Whether each holds its place. What lies on a left or lower side is inside, on a right or upper one it is not.
    Vec4Mask hold(Int4 x, Int4 y) const
    {
        const Vec4 placeX = toFloats(x), placeY = toFloats(y);
        return m_ab.areLeftOf(placeX, placeY) & m_bc.areLeftOf(placeX, placeY) & m_ca.areLeftOf(placeX, placeY);
    }

private:
    /// A side of each. A place near it is on its left, where the triangle is, if the cross product of the side and what
    /// leads to the place is positive, or 0 on a side that belongs to the triangle. That is computed without rounding.
    class Sides
    {
    public:
        template <typename Corners>
        Sides(const Corners& from, const Corners& to)
            : m_x(toFloats(from.x)), m_y(toFloats(from.y)), m_dx(toFloats(to.x) - m_x), m_dy(toFloats(to.y) - m_y)
        {
            const Vec4Mask belong = (m_dy < 0.0F) | ((m_dy == 0.0F) & (m_dx > 0.0F));
            m_least = belong ? Vec4{} : Vec4{} + 1.0F;
        }

        Vec4Mask areLeftOf(Vec4 x, Vec4 y) const { return m_dx * (y - m_y) - m_dy * (x - m_x) >= m_least; }

    private:
        Vec4 m_x, m_y, m_dx, m_dy, m_least;
    };

    Sides m_ab, m_bc, m_ca;
};

} // namespace zr
