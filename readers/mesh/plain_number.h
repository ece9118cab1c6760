#pragma once

#include <QtGlobal>

#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

// Numbers as nearly every model file writes them, read straight from the text without a string. What these functions
// do not accept is left to number_text.h; what they accept, they read to the same bits.

namespace zr
{

/// So many readable bytes must stand before and behind the text that the functions below are called on.
constexpr int kTextPadding = 64;

namespace plain
{

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "eight digits are taken from one little-endian word");

constexpr quint64 kEveryByte = 0x0101010101010101;
constexpr quint64 kIntegerPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

/// All powers of ten that are doubles without rounding.
constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                              1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
/// 16 bytes from kHighBytes + n are a mask of the n bytes at the highest addresses.
constexpr quint8 kHighBytes[] = {0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
                                 0,    0,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
constexpr double kSigns[] = {1.0, -1.0};
constexpr int kMostDigits = 19; ///< so many always fit into 64 bits

inline quint64 word(const char* text)
{
    quint64 bytes = 0;
    std::memcpy(&bytes, text, sizeof(bytes));
    return bytes;
}

inline bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// Whether a token ends at `text`, in a way that leaves the number before it alone.
inline bool tokenEndsAt(const char* text)
{
    return isBlank(*text) || *text == '\n' || (*text == '\r' && text[1] == '\n');
}

/// The number that the eight digit values in `digits` make, the first one in the lowest byte.
inline quint64 eightDigits(quint64 digits)
{
    constexpr quint64 mask = 0x000000FF000000FF;
    digits = digits * 10 + (digits >> 8U);
    return ((digits & mask) * 0x000F424000000064 + ((digits >> 16U) & mask) * 0x0000271000000001) >> 32U;
}

/// Appends the digits at `text` to `value` and their count to `count`; returns the first byte that is none.
/// `value` is meaningless when `count` exceeds kMostDigits.
inline const char* appendDigits(const char* text, quint64& value, int& count)
{
    while (true) {
        const quint64 digits = word(text) ^ (kEveryByte * '0');
        // The high bit of each byte that is no digit value; exact up to and including the first one.
        const quint64 others = ((digits + kEveryByte * (0x80 - 10)) | digits) & (kEveryByte * 0x80);
        if (others != 0) {
            const unsigned bits = static_cast<unsigned>(__builtin_ctzll(others)) - 7;
            const unsigned digitCount = bits / 8;
            // In two steps, since a shift by all 64 bits is none.
            value = value * kIntegerPowers[digitCount] + eightDigits(digits << (56 - bits) << 8U);
            count += static_cast<int>(digitCount);
            return text + digitCount;
        }
        value = value * kIntegerPowers[8] + eightDigits(digits);
        count += 8;
        text += 8;
    }
}

constexpr int kMostExactPower = 22;
constexpr unsigned kMostExactDigits = 15;

/// value = mantissa * 10^exponent when that takes a single, exactly rounded operation.
inline bool exactProduct(quint64 mantissa, int exponent, double& value)
{
    constexpr quint64 exactIntegers = quint64{1} << 53U;
    if (mantissa > exactIntegers || exponent < -kMostExactPower || exponent > kMostExactPower)
        return false;
    const auto whole = static_cast<double>(static_cast<qint64>(mantissa));
    value = exponent < 0 ? whole / kPowers[-exponent] : whole * kPowers[exponent];
    return true;
}

/// Reads a number of any length in decimal notation; null when the token is of another form.
const char* readLongFloat(const char* text, float& result);

#ifdef __SSE2__
/// One bit for each of the 16 bytes at `text`, set where the byte is no digit; the two bits above them are set, too.
inline unsigned nonDigits(const char* text)
{
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    // Moves the digits to the upper end of the signed bytes.
    const __m128i moved = _mm_add_epi8(bytes, _mm_set1_epi8(0x7F - '9'));
    const __m128i digits = _mm_cmpgt_epi8(moved, _mm_set1_epi8(0x7F - 10));
    return static_cast<unsigned>(_mm_movemask_epi8(digits)) ^ 0x3FFFFU;
}

/// The number that the `count` digits before `end` make, at most 16, `fraction` of them behind a point that stands
/// among them; 16 for none.
inline quint64 digitsBefore(const char* end, unsigned fraction, unsigned count)
{
    const auto load = [](const void* bytes) { return _mm_loadu_si128(static_cast<const __m128i*>(bytes)); };
    // What stands before the point moves up by one byte, over it.
    const __m128i behindPoint = load(kHighBytes + fraction);
    const __m128i text =
        _mm_or_si128(_mm_and_si128(behindPoint, load(end - 16)), _mm_andnot_si128(behindPoint, load(end - 17)));
    const __m128i digits = _mm_and_si128(_mm_sub_epi8(text, _mm_set1_epi8('0')), load(kHighBytes + count));
    // Two, four, then eight digits in each lane.
    const __m128i tens = _mm_mullo_epi16(_mm_and_si128(digits, _mm_set1_epi16(0xFF)), _mm_set1_epi16(10));
    const __m128i pairs = _mm_add_epi16(tens, _mm_srli_epi16(digits, 8));
    const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00010064));
    const __m128i eights = _mm_madd_epi16(_mm_packs_epi32(fours, fours), _mm_set1_epi32(0x00012710));
    const auto both = static_cast<quint64>(_mm_cvtsi128_si64(eights));
    return (both & 0xFFFFFFFFU) * 100000000 + (both >> 32U);
}

/// Reads "e", a sign and two digits, which is what every C library writes.
inline bool readTwoDigitExponent(const char* text, int& exponent)
{
    quint32 bytes = 0;
    std::memcpy(&bytes, text, sizeof(bytes));
    bytes = (bytes | 0x20U) - ('e' | '+' << 8U | '0' << 16U | quint32{'0'} << 24U);
    // A minus is two above a plus. A digit does not reach the high bit, even after the addition.
    if (((bytes | (bytes + 0x76760000U)) & 0x8080FDFFU) != 0)
        return false;
    const int value = static_cast<int>((bytes >> 16U) * 0x0A01U >> 8U & 0xFFU);
    exponent += (bytes & 0x200U) != 0 ? -value : value;
    return exponent >= -kMostExactPower && exponent <= kMostExactPower;
}

/// Reads a number that ends within 16 bytes and has no unusual exponent; null when there is none. The end of the token
/// is found in one step, whatever its length, so that the processor can begin with the next token while this one is
/// still converted.
inline const char* readShortFloat(const char* text, float& result)
{
    const unsigned negative = *text == '-' ? 1 : 0;
    unsigned others = nonDigits(text) - negative;
    auto end = static_cast<unsigned>(__builtin_ctz(others));
    unsigned digits = end - negative;
    unsigned fraction = 16;
    int exponent = 0;
    if (text[end] == '.') {
        others &= others - 1;
        const unsigned point = end + 1;
        end = static_cast<unsigned>(__builtin_ctz(others));
        fraction = end - point;
        digits += fraction;
        exponent = -static_cast<int>(fraction);
    }
    // So many digits are a double without rounding, which leaves the one of the last operation.
    if (digits - 1 >= kMostExactDigits)
        return nullptr;
    const quint64 mantissa = digitsBefore(text + end, fraction, digits);
    text += end;
    if (*text == 'e' || *text == 'E') {
        if (!readTwoDigitExponent(text, exponent))
            return nullptr;
        text += 4;
    }
    if (!tokenEndsAt(text))
        return nullptr;
    const double value = static_cast<double>(static_cast<qint64>(mantissa)) * kSigns[negative];
    result = static_cast<float>(exponent < 0 ? value / kPowers[-exponent] : value * kPowers[exponent]);
    return text;
}
#endif

} // namespace plain

/// Reads the decimal number at `text` and returns the end of its token; null when the token is not of the usual form.
inline const char* readPlainFloat(const char* text, float& result)
{
#ifdef __SSE2__
    if (const char* const end = plain::readShortFloat(text, result))
        return end;
#endif
    return plain::readLongFloat(text, result);
}

/// Reads three numbers in plain notation with blanks between them; the end of the last one, or null.
inline const char* readPlainPoint(const char* text, float* point)
{
    for (int i = 0; i < 3; ++i) {
        while (plain::isBlank(*text))
            ++text;
        text = readPlainFloat(text, point[i]);
        if (!text)
            return nullptr;
    }
    return text;
}

/// Reads the index at `text`, a decimal number cut to a signed 32-bit one, and returns the end of its token; null when
/// the token is not of the usual form. A number with slashes is none for QString::toULongLong() and reads as 0.
inline const char* readPlainIndex(const char* text, qint32& result)
{
    quint64 value = 0;
    int digits = 0;
    text = plain::appendDigits(text, value, digits);
    if (*text == '/') {
        value = 0;
        // No token end, no zero byte and nothing that is not ASCII.
        while (*text > ' ')
            ++text;
    } else if (digits == 0 || digits > plain::kMostDigits) {
        return nullptr;
    }
    if (!plain::tokenEndsAt(text))
        return nullptr;
    result = static_cast<qint32>(static_cast<quint32>(value));
    return text;
}

#ifdef __SSE2__
namespace plain
{

/// Reads three indices of at most eight digits with one blank between them that end within 32 bytes; null when the
/// text is another one.
inline const char* readShortIndices(const char* text, qint32* indices)
{
    quint64 others = (nonDigits(text) & 0xFFFFU) | quint64{nonDigits(text + 16)} << 16U;
    unsigned begin = 0;
    for (int i = 0; i < 3; ++i) {
        const auto end = static_cast<unsigned>(__builtin_ctzll(others));
        const unsigned digits = end - begin;
        // The end of the line may stand behind the last index only.
        if (digits - 1 > 7 || !(isBlank(text[end]) || (i == 2 && tokenEndsAt(text + end))))
            return nullptr;
        indices[i] = static_cast<qint32>(eightDigits((word(text + begin) ^ (kEveryByte * '0')) << (64 - 8 * digits)));
        others &= others - 1;
        begin = end + 1;
    }
    return text + begin - 1;
}

} // namespace plain
#endif

/// Reads three indices with blanks between them; the end of the last one, or null.
inline const char* readPlainIndices(const char* text, qint32* indices)
{
    while (plain::isBlank(*text))
        ++text;
#ifdef __SSE2__
    if (const char* const end = plain::readShortIndices(text, indices))
        return end;
#endif
    for (int i = 0; i < 3; ++i) {
        while (plain::isBlank(*text))
            ++text;
        text = readPlainIndex(text, indices[i]);
        if (!text)
            return nullptr;
    }
    return text;
}

} // namespace zr
