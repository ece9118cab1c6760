// SPDX-License-Identifier: MIT
#include "render/polygon_clip.h"

#include <cmath>

namespace zr
{
namespace
{

/// Positive inside of a plane: w + x, w - x, w + y and so on.
double distanceTo(const ClipCorner& corner, std::size_t axis, double sign)
{
    return corner[3] + sign * corner[axis];
}

/// Where the edge from a corner inside to one outside of a plane crosses it. The coordinate itself is set, so that
/// rounding leaves nothing outside.
ClipCorner crossing(const ClipCorner& inside, const ClipCorner& outside, std::size_t axis, double sign)
{
    const double in = distanceTo(inside, axis, sign);
    const double part = in / (in - distanceTo(outside, axis, sign));
    ClipCorner result{};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = inside[i] + part * (outside[i] - inside[i]);
    result[axis] = -sign * result[3];
    return result;
}

ClippedPolygon cutBy(const ClippedPolygon& polygon, std::size_t axis, double sign)
{
    ClippedPolygon result;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const ClipCorner& from = polygon[i];
        const ClipCorner& to = polygon[i + 1 < polygon.size() ? i + 1 : 0];
        const bool fromInside = distanceTo(from, axis, sign) >= 0;
        const bool toInside = distanceTo(to, axis, sign) >= 0;
        if (fromInside)
            result.append(from);
        // Computed from the corner inside, so that two triangles that share the edge get the same corner.
        if (fromInside != toInside)
            result.append(fromInside ? crossing(from, to, axis, sign) : crossing(to, from, axis, sign));
    }
    return result;
}

ClipCorner toCorner(Vec4 v)
{
    return {double{v[0]}, double{v[1]}, double{v[2]}, double{v[3]}};
}

bool isFinite(Vec4 v)
{
    // Zero times infinity or NaN is NaN.
    const Vec4 zero = v * 0.0F;
    return zero[0] + zero[1] + zero[2] + zero[3] == 0.0F;
}

} // namespace

ClippedPolygon clipped(Vec4 a, Vec4 b, Vec4 c)
{
    if (!isFinite(a) || !isFinite(b) || !isFinite(c))
        return {};
    ClippedPolygon polygon;
    for (const Vec4 corner : {a, b, c})
        polygon.append(toCorner(corner));
    for (std::size_t axis = 0; axis < 3; ++axis)
        polygon = cutBy(cutBy(polygon, axis, 1.0), axis, -1.0);
    return polygon;
}

} // namespace zr
