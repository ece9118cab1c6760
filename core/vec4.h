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

/// Four whole numbers.
using Int4 = int __attribute__((vector_size(16)));

/// What comparing two Vec4 gives: all bits of a lane are set where it holds.
using Vec4Mask = int __attribute__((vector_size(16)));

inline Vec4 toFloats(Int4 v)
{
    return __builtin_convertvector(v, Vec4);
}

/// Of whole numbers within the range of int.
inline Int4 toInts(Vec4 v)
{
    return __builtin_convertvector(v, Int4);
}

/// Two numbers of double precision.
using Double2 = double __attribute__((vector_size(16)));

/// One bit for each lane in which it holds, the first lane's the lowest.
inline unsigned lanesOf(Vec4Mask mask)
{
#ifdef __SSE2__
    return static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#else
    return (mask[0] & 1U) | (mask[1] & 2U) | (mask[2] & 4U) | (mask[3] & 8U);
#endif
}

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
inline Int4 roundedToInts(Vec4 v)
{
#ifdef __SSE2__
    return reinterpret_cast<Int4>(_mm_cvtps_epi32(v));
#else
    Int4 result{};
    for (int i = 0; i < 4; ++i)
        result[i] = static_cast<int>(std::nearbyint(v[i]));
    return result;
#endif
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

/// Four numbers of double precision, in two registers.
struct Double4 {
    Double2 low, high;

    friend Double4 operator+(Double4 a, Double4 b) { return {a.low + b.low, a.high + b.high}; }
    friend Double4 operator-(Double4 a, Double4 b) { return {a.low - b.low, a.high - b.high}; }
    friend Double4 operator*(Double4 a, Double4 b) { return {a.low * b.low, a.high * b.high}; }
    friend Double4 operator/(Double4 a, Double4 b) { return {a.low / b.low, a.high / b.high}; }
};

inline Double4 toDouble4(double number)
{
    return {Double2{} + number, Double2{} + number};
}

inline Double4 toDouble4(Vec4 v)
{
#ifdef __SSE2__
    return {_mm_cvtps_pd(v), _mm_cvtps_pd(_mm_movehl_ps(v, v))};
#else
    return {Double2{v[0], v[1]}, Double2{v[2], v[3]}};
#endif
}

inline Vec4 toVec4(Double4 v)
{
#ifdef __SSE2__
    return _mm_movelh_ps(_mm_cvtpd_ps(v.low), _mm_cvtpd_ps(v.high));
#else
    return Vec4{static_cast<float>(v.low[0]), static_cast<float>(v.low[1]), static_cast<float>(v.high[0]),
                static_cast<float>(v.high[1])};
#endif
}

inline Double4 squareRoots(Double4 v)
{
#ifdef __SSE2__
    return {_mm_sqrt_pd(v.low), _mm_sqrt_pd(v.high)};
#else
    return {Double2{std::sqrt(v.low[0]), std::sqrt(v.low[1])}, Double2{std::sqrt(v.high[0]), std::sqrt(v.high[1])}};
#endif
}

/// As roundedToInt().
inline Int4 roundedToInts(Double4 v)
{
#ifdef __SSE2__
    return reinterpret_cast<Int4>(_mm_unpacklo_epi64(_mm_cvtpd_epi32(v.low), _mm_cvtpd_epi32(v.high)));
#else
    return Int4{roundedToInt(v.low[0]), roundedToInt(v.low[1]), roundedToInt(v.high[0]), roundedToInt(v.high[1])};
#endif
}

/// v * factor + summand with one rounding, as processors with such an instruction do it; the same on all others.
inline Vec4 fusedMultiplyAdd(Vec4 v, float factor, float summand)
{
    return toVec4(toDouble4(v) * toDouble4(factor) + toDouble4(summand));
}

inline Vec4Mask operator>(Double4 a, Double4 b)
{
    const Int4 low = reinterpret_cast<Int4>(a.low > b.low), high = reinterpret_cast<Int4>(a.high > b.high);
    return __builtin_shufflevector(low, high, 0, 2, 4, 6);
}

/// The lesser and the greater of two numbers, lane by lane; the second one when either is NaN. GCC does not find these
/// instructions by itself.
inline Vec4 lesserOf(Vec4 a, Vec4 b)
{
#ifdef __SSE2__
    return _mm_min_ps(a, b);
#else
    return a < b ? a : b;
#endif
}
inline Vec4 greaterOf(Vec4 a, Vec4 b)
{
#ifdef __SSE2__
    return _mm_max_ps(a, b);
#else
    return a > b ? a : b;
#endif
}
inline Double2 lesserOf(Double2 a, Double2 b)
{
#ifdef __SSE2__
    return _mm_min_pd(a, b);
#else
    return a < b ? a : b;
#endif
}
inline Double2 greaterOf(Double2 a, Double2 b)
{
#ifdef __SSE2__
    return _mm_max_pd(a, b);
#else
    return a > b ? a : b;
#endif
}
inline Double4 lesserOf(Double4 a, Double4 b)
{
    return {lesserOf(a.low, b.low), lesserOf(a.high, b.high)};
}
inline Double4 greaterOf(Double4 a, Double4 b)
{
    return {greaterOf(a.low, b.low), greaterOf(a.high, b.high)};
}

/// Makes the columns of four rows rows.
inline void transpose(std::array<Vec4, 4>& rows)
{
    const auto& [a, b, c, d] = rows;
    const Vec4 ab01 = __builtin_shufflevector(a, b, 0, 4, 1, 5), ab23 = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const Vec4 cd01 = __builtin_shufflevector(c, d, 0, 4, 1, 5), cd23 = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    rows = {__builtin_shufflevector(ab01, cd01, 0, 1, 4, 5), __builtin_shufflevector(ab01, cd01, 2, 3, 6, 7),
            __builtin_shufflevector(ab23, cd23, 0, 1, 4, 5), __builtin_shufflevector(ab23, cd23, 2, 3, 6, 7)};
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
