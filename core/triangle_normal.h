// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"

#include <cmath>

namespace zr
{

/// The cross product of the edges a-b and b-c.
inline Vec4 edgeProduct(Vec4 a, Vec4 b, Vec4 c)
{
    const Vec4 u = b - a;
    const Vec4 v = c - b;
    return rotated(u * rotated(v) - rotated(u) * v);
}

/// `v` at length 1, for lengths whose square is not an ordinary float. A float's square is always a double.
inline Vec4 normalizedExactly(Vec4 v)
{
    const double x = v[0], y = v[1], z = v[2];
    const double square = x * x + y * y + z * z;
    if (square == 0.0)
        return Vec4{};
    const double length = std::sqrt(square);
    return Vec4{static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length), 0.0F};
}

/// `v` at length 1; zero for a vector that is exactly zero, however short the others are. Not finite for vectors that
/// are not.
///
/// QVector3D::normalized() would not do: it takes the product of edges below 1e-3 for zero, and fine meshes are
/// full of them.
inline Vec4 normalized(Vec4 v)
{
    constexpr float minSquare = 1e-30F;
    constexpr float maxSquare = 1e30F;
    const Vec4 squares = v * v;
    const float square = squares[0] + squares[1] + squares[2];
    return square > minSquare && square < maxSquare ? v / std::sqrt(square) : normalizedExactly(v);
}

/// The unit normal of the triangle a, b, c, counter-clockwise seen from its tip.
inline Vec4 triangleNormal(Vec4 a, Vec4 b, Vec4 c)
{
    return normalized(edgeProduct(a, b, c));
}

} // namespace zr
