// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "render/sample_pattern.h"

#include <array>
#include <cstddef>

namespace zr
{

/// Which samples of a group lie in a triangle that is some pixels wide and high at most. Of such triangles fine meshes
/// consist; walking along their sides would take more time than asking for each sample on which side of them it is.
class SmallTriangle
{
public:
    /// In steps: the distances' products are far within the range of int.
    static constexpr int kMaxExtent = 16 * kSubpixels;

    /// Counter-clockwise corners. Places are told from the lower left corner of a cell at x and y, in steps, not far
    /// from the triangle.
    template <typename Corner>
    SmallTriangle(const Corner& a, const Corner& b, const Corner& c, int x, int y)
        : m_sides{Side(a, b, x, y), Side(b, c, x, y), Side(c, a, x, y)}
    {
    }

    /// Goes from group to group along a row of them.
    class Row
    {
    public:
        /// `groupX` and `groupY`: where a group's samples lie, from the lower left corner of their cell. The row of
        /// cells is `y` steps above the triangle's.
        Row(const SmallTriangle& triangle, Vec4 groupX, Vec4 groupY, int y, int cellWidth)
        {
            for (std::size_t i = 0; i < m_values.size(); ++i) {
                const Side& side = triangle.m_sides[i];
                m_values[i] = side.valuesAt(groupX, groupY) + (side.value + side.dx * y);
                m_steps[i] = Int4{} + side.dy * cellWidth;
            }
        }

        /// What lies on a left or lower side is inside, on a right or upper one it is not.
        Vec4Mask areInside() const { return (m_values[0] | m_values[1] | m_values[2]) >= 0; }

        void goToNextCell()
        {
            for (std::size_t i = 0; i < m_values.size(); ++i)
                m_values[i] -= m_steps[i];
        }

    private:
        std::array<Int4, 3> m_values;
        std::array<Int4, 3> m_steps;
    };

private:
    /// A side, and on which side of it places are: the cross product of the side and what leads to the place is
    /// positive on its left, where the triangle is. On a side that does not belong to the triangle it is -1.
    struct Side {
        template <typename Corner>
        Side(const Corner& from, const Corner& to, int x, int y) : dx(to.x - from.x), dy(to.y - from.y)
        {
            const bool belongs = dy < 0 || (dy == 0 && dx > 0);
            value = dx * (y - from.y) - dy * (x - from.x) - (belongs ? 0 : 1);
        }

        /// Without rounding: the products are far below 2 to the power of 24.
        Int4 valuesAt(Vec4 groupX, Vec4 groupY) const
        {
            return toInts(static_cast<float>(dx) * groupY - static_cast<float>(dy) * groupX);
        }

        int dx;
        int dy;
        int value; ///< at the place that the others are told from
    };

    std::array<Side, 3> m_sides;
};

} // namespace zr
