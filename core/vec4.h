// SPDX-License-Identifier: MIT
#pragma once

#include <cstring>

namespace zr
{

/// A point or direction in a SIMD register: x, y, z and a fourth number without meaning.
using Vec4 = float __attribute__((vector_size(16)));

/// From four floats at any address, of any alignment.
inline Vec4 loadVec4(const void* floats)
{
    Vec4 v;
    std::memcpy(&v, floats, sizeof(v));
    return v;
}

/// The same for a point whose three floats end a record: reads the float before them instead of the one after.
inline Vec4 loadLastVec3(const char* floats)
{
    const Vec4 v = loadVec4(floats - sizeof(float));
    return __builtin_shufflevector(v, v, 1, 2, 3, 0);
}

/// Writes all four floats.
inline void storeVec4(float* floats, Vec4 v)
{
    std::memcpy(floats, &v, sizeof(v));
}

/// Writes the first three floats.
inline void storeVec3(float* floats, Vec4 v)
{
    std::memcpy(floats, &v, 3 * sizeof(float));
}

/// The same x and y at another height.
inline Vec4 withZ(Vec4 v, float z)
{
    return __builtin_shufflevector(v, Vec4{z, z, z, z}, 0, 1, 4, 5);
}

inline bool sameXyz(Vec4 a, Vec4 b)
{
    const auto same = a == b;
    return (same[0] & same[1] & same[2]) != 0;
}

/// y, z, x.
inline Vec4 rotated(Vec4 v)
{
    return __builtin_shufflevector(v, v, 1, 2, 0, 3);
}

} // namespace zr
