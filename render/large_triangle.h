// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"

#include <algorithm>
#include <array>

namespace zr
{

/// Which part of four rows of samples at a time lies in a triangle of any size within a picture.
class LargeTriangle
{
public:
    /// Counter-clockwise corners.
    template <typename Corner>
    LargeTriangle(const Corner& a, const Corner& b, const Corner& c) : m_sides{Side(a, b), Side(b, c), Side(c, a)}
    {
    }

    /// From the first step that is inside to before the first one that is no more, row by row.
    struct Spans {
        Int4 begin, end;

        int leftmost() const { return std::min({begin[0], begin[1], begin[2], begin[3]}); }
        int rightmost() const { return std::max({end[0], end[1], end[2], end[3]}); }
    };

    /// At the heights `y`; of rows that are not to be drawn, nothing is inside.
    Spans spansAt(Vec4 y, Vec4Mask areDrawn) const
    {
        Double4 left = toDouble4(0.0), right = toDouble4(kWidest);
        for (const Side& side : m_sides) {
            // Beyond their ends, too, all of the triangle is on one side of them.
            if (side.dy < 0)
                left = greaterOf(side.at(y), left);
            else if (side.dy > 0)
                right = lesserOf(side.at(y), right);
        }
        const Int4 begin = roundedToInts(lesserOf(left, toDouble4(kWidest)));
        const Int4 end = roundedToInts(greaterOf(right, toDouble4(0.0)));
        return {areDrawn ? begin : Int4{} + static_cast<int>(kWidest), areDrawn ? end : Int4{}};
    }

private:
    static constexpr double kWidest = 1 << 24; ///< wider than any picture, in steps

    struct Side {
        template <typename Corner>
        Side(const Corner& from, const Corner& to)
            : x(from.x + kRoundsUp), y(from.y), dy(to.y - from.y), slope(static_cast<double>(to.x - from.x) / dy)
        {
        }

        /// What is to be rounded to the nearest step for the first one that is not left of the side.
        Double4 at(Vec4 heights) const { return toDouble4(x) + (toDouble4(heights) - toDouble4(y)) * toDouble4(slope); }

        /// Less than a half, so that what is a whole number but for the slope's rounding stays that number. One that is
        /// not whole is at least 2 to the power of -20 away from the next, far more than this and all rounding.
        static constexpr double kRoundsUp = 0.5 - 1.0 / (1 << 22);

        double x;
        double y;
        double dy;
        double slope; ///< means nothing when dy is 0
    };

    std::array<Side, 3> m_sides;
};

} // namespace zr
