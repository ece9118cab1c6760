// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "readers/mesh/mesh.h"

#include <cmath>

namespace zr
{

/// The box around points while it grows. A NaN coordinate leaves its axis as it is.
struct Bounds {
    Vec4 max = Vec4{} + std::numeric_limits<float>::lowest();
    Vec4 min = Vec4{} + std::numeric_limits<float>::max();

    void include(Vec4 v)
    {
        max = v > max ? v : max;
        min = v < min ? v : min;
    }
};

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

/// Writes three records with the same normal: kFloatsPerTriangle floats.
inline void writeTriangle(float* out, Vec4 a, Vec4 b, Vec4 c, Vec4 normal)
{
    float* const second = out + kFloatsPerRecord;
    float* const third = second + kFloatsPerRecord;
    // Each store covers the float that the one before wrote too much.
    storeVec4(out, a);
    storeVec4(out + kFloatsPerPoint, normal);
    storeVec4(second, b);
    storeVec4(second + kFloatsPerPoint, normal);
    storeVec4(third, c);
    storeVec3(third + kFloatsPerPoint, normal);
}

/// The same with the triangle's own normal.
inline void writeTriangle(float* out, Vec4 a, Vec4 b, Vec4 c)
{
    writeTriangle(out, a, b, c, triangleNormal(a, b, c));
}

/// The same without normals: kFloatsPerBareTriangle floats.
inline void writeBareTriangle(float* out, Vec4 a, Vec4 b, Vec4 c)
{
    float* const second = out + kFloatsPerPoint;
    storeVec4(out, a);
    storeVec4(second, b);
    storeVec3(second + kFloatsPerPoint, c);
}

} // namespace zr
