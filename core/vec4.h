// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cmath>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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

/// What comparing two Vec4 gives: all bits of a lane are set where it holds.
using Vec4Mask = int __attribute__((vector_size(16)));

/// Whether it holds in all four lanes.
inline bool holdsInAll(Vec4Mask mask)
{
#ifdef __SSE2__
    return _mm_movemask_epi8(reinterpret_cast<__m128i>(mask)) == 0xFFFF;
#else
    return (mask[0] & mask[1] & mask[2] & mask[3]) != 0;
#endif
}

/// The four lanes as whole numbers, rounded to the nearest, halves to the even one. What does not fit is unspecified.
inline std::array<int, 4> roundedToInts(Vec4 v)
{
    std::array<int, 4> result{};
#ifdef __SSE2__
    _mm_storeu_si128(reinterpret_cast<__m128i*>(result.data()), _mm_cvtps_epi32(v));
#else
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = static_cast<int>(std::nearbyint(v[i]));
#endif
    return result;
}

/// The nearest whole number, of two the even one. For numbers within the range of int.
inline int roundedToInt(double number)
{
#ifdef __SSE2__
    return _mm_cvtsd_si32(_mm_set_sd(number));
#else
    return static_cast<int>(std::nearbyint(number));
#endif
}

/// x and y of a * b + c with one rounding each, as processors with such an instruction do it; the same on all others.
/// The other lanes are 0.
inline Vec4 fusedMultiplyAddXy(Vec4 a, Vec4 b, Vec4 c)
{
#ifdef __SSE2__
    const __m128d product = _mm_mul_pd(_mm_cvtps_pd(a), _mm_cvtps_pd(b));
    return _mm_cvtpd_ps(_mm_add_pd(product, _mm_cvtps_pd(c)));
#else
    return Vec4{std::fma(a[0], b[0], c[0]), std::fma(a[1], b[1], c[1]), 0.0F, 0.0F};
#endif
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
