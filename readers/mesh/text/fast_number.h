// SPDX-License-Identifier: MIT
#pragma once

// Three numbers of at most 15 digits each in the 48 bytes after a keyword, or three indices of at most eight digits in
// 32 bytes: nearly all that model files have. The ends of all three are looked up in one set of bits and their digits
// are converted together, which takes half the time of reading one number after the other.
//
// What these functions accept they read to the same bits as those of scalar_number.h, which say what is right:
// the tests compare each step with a loop over the bytes.

#include "core/vec4.h"
#include "readers/mesh/text/text_bytes.h"

#include <array>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace zr::fast
{

#ifdef __SSE2__

/// With this number of digits every number is a double without rounding, which leaves the one rounding of the scale.
constexpr unsigned kMaxDigits = 15;

/// Masks. 16 bytes from kHighBytes + n on choose the last n of 16 bytes, 8 bytes from kHighBytes + 8 + n on the last n
/// of eight: kHighBytes + 3 begins with 13 zeros, after which there are three 0xFF.
constexpr quint8 kHighBytes[] = {0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
                                 0,    0,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

/// All powers of ten that are doubles without rounding.
constexpr int kMaxPower = 22;
constexpr double kPowers[kMaxPower + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                           1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// What the digits of a number are multiplied by and then divided by; one of the two is 1 but for its sign, so that
/// the result is rounded once.
struct Scale {
    double factor;
    double divisor;
};

/// Two for each power of ten from -kMaxPower on, without and with a minus: "-2.5" is the digits 25, the power -1 and a
/// minus, which is kScales[2 * (22 - 1) + 1] = {-1, 10}, and 25 * -1 / 10 = -2.5.
constexpr auto makeScales()
{
    std::array<Scale, 2 * (2 * std::size_t{kMaxPower} + 1)> scales{};
    for (std::size_t i = 0; i < scales.size(); ++i) {
        const double sign = i % 2 == 0 ? 1.0 : -1.0;
        const int power = static_cast<int>(i / 2) - kMaxPower;
        scales[i] = power < 0 ? Scale{sign, kPowers[-power]} : Scale{sign * kPowers[power], 1.0};
    }
    return scales;
}

constexpr auto kScales = makeScales();
constexpr std::size_t kUnscaled = 2 * std::size_t{kMaxPower}; ///< of kScales, for the power 0

/// A number whose digits were found.
struct FoundFloat {
    __m128i fours;     ///< four numbers of four digits each, the first ones in the lowest lane
    std::size_t scale; ///< of kScales
};

inline __m128i load16(const void* bytes)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

/// Two runs of eight bytes.
inline __m128i load8and8(const void* first, const void* second)
{
    return _mm_unpacklo_epi64(_mm_loadl_epi64(static_cast<const __m128i*>(first)),
                              _mm_loadl_epi64(static_cast<const __m128i*>(second)));
}

/// One bit for each of the 16 bytes at `text`, set where the byte is a digit.
///
/// Adding 70 moves the digits to the upper end of the signed bytes: '0' becomes 118 and '9' 127. '/' becomes 117, and
/// ':' wraps to -128, so what is greater than 117 was a digit.
inline quint64 digitBits(const char* text)
{
    const __m128i moved = _mm_add_epi8(load16(text), _mm_set1_epi8(0x7F - '9'));
    const __m128i digits = _mm_cmpgt_epi8(moved, _mm_set1_epi8(0x7F - 10));
    return static_cast<unsigned>(_mm_movemask_epi8(digits));
}

/// Goes through some bytes from one that is not a digit to the next one. All of them are found in one step, so that the
/// processor can be at work on several numbers, and on the next line, at the same time.
///
/// Invariant: bit i of m_bits is set exactly where text[i] is not a digit and was not dropped. Bits are only cleared,
/// the lowest one first, so next() never goes back. No bit beyond the 32 or 48 bytes is ever set: when the bits have
/// run out, what follows is unknown, not digits.
class NonDigits
{
public:
    static NonDigits among32(const char* text)
    {
        return NonDigits(static_cast<quint32>(~(digitBits(text) | digitBits(text + 16) << 16U)));
    }

    static NonDigits among48(const char* text)
    {
        const quint64 digits = digitBits(text) | digitBits(text + 16) << 16U | digitBits(text + 32) << 32U;
        return NonDigits(digits ^ 0xFFFFFFFFFFFF);
    }

    /// The place of the next one. There must be one.
    std::size_t next() const { return static_cast<std::size_t>(__builtin_ctzll(m_bits)); }

    /// Drops the next one, if `count` is 1, or none, if it is 0, by the same instructions: signs are as good as random.
    /// Whether there is another one.
    ///
    /// 0b1010'0000 - 1 = 0b1001'1111 differs from the lowest set bit on downwards, so that & leaves 0b1000'0000.
    bool drop(std::size_t count = 1)
    {
        m_bits &= m_bits - count;
        return m_bits != 0;
    }

    bool isEmpty() const { return m_bits == 0; }

private:
    explicit NonDigits(quint64 bits) : m_bits(bits) {}

    quint64 m_bits;
};

/// The numbers that each four of the digits among `text` make. `chosen` masks the digits; the other bytes read as 0.
///
/// "1234" is the two lanes 0x0201 and 0x0403 of 16 bits, the first digit in the lower byte. Times 0x0A01 = 10 * 256 + 1
/// a lane has 10 * 1 + 2 in its upper byte, what is beyond 16 bits is lost, and the shift leaves 12 and 34. Times 100
/// and 1, from 0x00010064, these add up to 1234.
inline __m128i fourDigits(__m128i text, __m128i chosen)
{
    const __m128i digits = _mm_and_si128(_mm_sub_epi8(text, _mm_set1_epi8('0')), chosen);
    // The compiler would take the multiplication by a constant apart, into five instructions.
    __m128i factor = _mm_set1_epi16(0x0A01);
    asm("" : "+x"(factor)); // NOLINT(hicpp-no-assembler)
    const __m128i pairs = _mm_srli_epi16(_mm_mullo_epi16(digits, factor), 8);
    return _mm_madd_epi16(pairs, _mm_set1_epi32(0x00010064));
}

/// The numbers of eight digits each that those of `first` and then those of `second` make.
///
/// "12345678" is the lanes 1234 and 5678, which fit into 16 bits. Times 10000 and 1, from 0x00012710, they add up.
inline __m128i eightDigits(__m128i first, __m128i second)
{
    return _mm_madd_epi16(_mm_packs_epi32(first, second), _mm_set1_epi32(0x00012710));
}

/// The `count` digits before `end`, at most 16, `fraction` of them after a point among them; 16 for no point.
///
/// What is in front of the point moves up by one byte, over it: before the end of "12.5" are the bytes "12.5", and one
/// byte earlier "?12.". The last one (`fraction`) of the former and all others of the latter are "?125", of which the
/// last three (`count`) are chosen.
inline __m128i digitsBefore(const char* end, std::size_t fraction, std::size_t count)
{
    const __m128i afterPoint = load16(kHighBytes + fraction);
    const __m128i text =
        _mm_or_si128(_mm_and_si128(afterPoint, load16(end - 16)), _mm_andnot_si128(afterPoint, load16(end - 17)));
    return fourDigits(text, load16(kHighBytes + count));
}

/// Adds an exponent to the place in kScales: "e", a sign and two digits, which is what every C library writes. False
/// for others.
///
/// Less "e+00", byte for byte, "E-05" is 0, 2, 0, 5. 0xFF and 0xFD allow no other letter and no other sign than one
/// that is two above the plus. A digit has no high bit, even after 0x76 was added: 9 becomes 0x7F, but 10 is 0x80. A
/// byte below its own in "e+00" borrows from the next one, but has a forbidden bit itself. The two digits make their
/// number as in fourDigits(), and each step of the power is two places.
inline bool addExponent(const char* text, std::size_t& scale)
{
    quint32 bytes = 0;
    std::memcpy(&bytes, text, sizeof(bytes));
    bytes = (bytes | 0x20U) - ('e' | '+' << 8U | '0' << 16U | quint32{'0'} << 24U);
    if (((bytes | (bytes + 0x76760000U)) & 0x8080FDFFU) != 0)
        return false;
    const std::size_t steps = 2 * std::size_t{(bytes >> 16U) * 0x0A01U >> 8U & 0xFFU};
    scale += (bytes & 0x200U) != 0 ? -steps : steps;
    return scale < kScales.size();
}

/// Finds the number that begins at text[begin], and moves on to its end. False when it is not a number, has more than
/// kMaxDigits or an unusual exponent. Something else may follow it.
///
/// Before and after: text[begin] has not been passed, and `others` holds all that are not digits from there on. After a
/// number, text[begin] is the first byte that does not belong to it; others.next() is the same place unless a digit
/// follows an exponent, which does not end a token.
inline bool findFloat(const char* text, std::size_t& begin, NonDigits& others, FoundFloat& number)
{
    const std::size_t negative = text[begin] == '-' ? 1 : 0;
    if (!others.drop(negative))
        return false;
    std::size_t end = others.next();
    std::size_t digits = end - begin - negative;
    std::size_t fraction = 16;
    std::size_t scale = kUnscaled + negative;
    if (text[end] == '.') {
        const std::size_t point = end;
        if (!others.drop())
            return false;
        end = others.next();
        fraction = end - point - 1;
        digits = end - begin - negative - 1;
        scale -= 2 * fraction;
    }
    // No digits are too many, too: 0 - 1 is the max number.
    if (digits - 1 >= kMaxDigits)
        return false;
    number.fours = digitsBefore(text + end, fraction, digits);
    // Most numbers have no exponent, and then this is a blank or a line end.
    if (text[end] > ' ') {
        others.drop();
        if (!addExponent(text + end, scale) || !others.drop())
            return false;
        end += 4;
    }
    number.scale = scale;
    begin = end;
    return true;
}

/// The numbers as floats, rounded once as a double and once as a float.
///
/// "123456789" is found as the fours 0, 1, 2345 and 6789, these are the eights 1 and 23456789, and 1 * 1e8 + 23456789
/// is a double without rounding.
inline Vec4 toVec4(const FoundFloat& x, const FoundFloat& y, const FoundFloat& z)
{
    const __m128i xy = eightDigits(x.fours, y.fours);
    const __m128i zz = eightDigits(z.fours, z.fours);
    const __m128d weights = _mm_setr_pd(1e8, 1.0);
    const __m128d xHalves = _mm_mul_pd(_mm_cvtepi32_pd(xy), weights);
    const __m128d yHalves = _mm_mul_pd(_mm_cvtepi32_pd(_mm_unpackhi_epi64(xy, xy)), weights);
    const __m128d zHalves = _mm_mul_pd(_mm_cvtepi32_pd(zz), weights);
    const __m128d xyDigits = _mm_add_pd(_mm_unpacklo_pd(xHalves, yHalves), _mm_unpackhi_pd(xHalves, yHalves));
    const __m128d zDigits = _mm_add_pd(zHalves, _mm_unpackhi_pd(zHalves, zHalves));

    const auto load = [](std::size_t scale) { return _mm_loadu_pd(reinterpret_cast<const double*>(&kScales[scale])); };
    const __m128d xScale = load(x.scale), yScale = load(y.scale), zScale = load(z.scale);
    const __m128d xyScaled =
        _mm_div_pd(_mm_mul_pd(xyDigits, _mm_unpacklo_pd(xScale, yScale)), _mm_unpackhi_pd(xScale, yScale));
    const __m128d zScaled =
        _mm_div_pd(_mm_mul_pd(zDigits, _mm_unpacklo_pd(zScale, zScale)), _mm_unpackhi_pd(zScale, zScale));
    return static_cast<Vec4>(_mm_movelh_ps(_mm_cvtpd_ps(xyScaled), _mm_cvtpd_ps(zScaled)));
}

/// Moves on from the end of a number to the next token of the line; false when there is none.
///
/// Before: what findFloat() leaves. After: what it expects.
inline bool findNextToken(const char* text, std::size_t& position, NonDigits& others)
{
    if (!isBlank(text[position]))
        return false;
    do {
        ++position;
        if (!others.drop())
            return false;
    } while (text[position] <= ' ' && isBlank(text[position]));
    return true;
}

/// Reads three numbers with blanks between them that end within 48 bytes; the end of the last one, or null.
inline const char* readPoint(const char* text, Vec4& point)
{
    FoundFloat x, y, z; // NOLINT(cppcoreguidelines-pro-type-member-init): filled when they are used
    NonDigits others = NonDigits::among48(text);
    std::size_t position = 0;
    if (others.isEmpty() || !findFloat(text, position, others, x) || !findNextToken(text, position, others) ||
        !findFloat(text, position, others, y) || !findNextToken(text, position, others) ||
        !findFloat(text, position, others, z) || !tokenEndsAt(text + position))
        return nullptr;
    point = toVec4(x, y, z);
    return text + position;
}

/// Reads three indices of at most eight digits with one space between them that end within 32 bytes; their end, or
/// null.
///
/// "12 345 6\n" has its others at 2, 6 and 8, hence numbers of 2, 6 - 2 - 1 = 3 and 8 - 6 - 1 = 1 digits. Less one, a
/// number of digits from 1 to 8 is below 8, and so is what | makes of three of them.
inline const char* readIndices(const char* text, Indices& indices)
{
    NonDigits others = NonDigits::among32(text);
    if (others.isEmpty())
        return nullptr;
    const std::size_t first = others.next();
    if (!others.drop())
        return nullptr;
    const std::size_t second = others.next(), secondDigits = second - first - 1;
    if (!others.drop())
        return nullptr;
    const std::size_t third = others.next(), thirdDigits = third - second - 1;
    const bool areShort = ((first - 1) | (secondDigits - 1) | (thirdDigits - 1)) < 8;
    if (!areShort || text[first] != ' ' || text[second] != ' ' || !tokenEndsAt(text + third))
        return nullptr;
    const char* const masks = reinterpret_cast<const char*>(kHighBytes + 8);
    const __m128i firstTwo =
        fourDigits(load8and8(text + first - 8, text + second - 8), load8and8(masks + first, masks + secondDigits));
    const __m128i last =
        fourDigits(load8and8(text + third - 8, text + third - 8), load8and8(masks + thirdDigits, masks + thirdDigits));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(indices.data()), eightDigits(firstTwo, last));
    return text + third;
}

#else

// Every x64 processor has SSE2. On others, all numbers are read one by one.
inline const char* readPoint(const char* /*text*/, Vec4& /*point*/)
{
    return nullptr;
}

inline const char* readIndices(const char* /*text*/, Indices& /*indices*/)
{
    return nullptr;
}

#endif

} // namespace zr::fast
