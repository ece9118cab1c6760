// SPDX-License-Identifier: MIT
#pragma once

#include "core/triangle_normal.h"
#include "readers/mesh/mesh.h"

#include <limits>

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
