#include "readers/mesh/plain_number.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace zr::plain
{
namespace
{

constexpr quint64 kIntegerPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
constexpr int kMostDigits = 19; // so many always fit into 64 bits

// The number that the eight digit values in `digits` make, the first one in the lowest byte.
quint64 eightDigits(quint64 digits)
{
    constexpr quint64 mask = 0x000000FF000000FF;
    digits = digits * 10 + (digits >> 8U);
    return ((digits & mask) * 0x000F424000000064 + ((digits >> 16U) & mask) * 0x0000271000000001) >> 32U;
}

// Appends the digits at `text` to `value` and their count to `count`; returns the first byte that is none.
// `value` is meaningless when `count` exceeds kMostDigits.
const char* appendDigits(const char* text, quint64& value, int& count)
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

// value = mantissa * 10^exponent when that takes a single, exactly rounded operation.
bool exactProduct(quint64 mantissa, int exponent, double& value)
{
    constexpr quint64 exactIntegers = quint64{1} << 53U;
    if (mantissa > exactIntegers || exponent < -kMostExactPower || exponent > kMostExactPower)
        return false;
    const auto whole = static_cast<double>(static_cast<qint64>(mantissa));
    value = exponent < 0 ? whole / kPowers[-exponent] : whole * kPowers[exponent];
    return true;
}

// As QString::toFloat() narrows: beyond the largest float lies infinity, even where rounding would lead back to it,
// and what is too small becomes a zero without a sign.
float narrowed(double value)
{
    if (std::fabs(value) > double{std::numeric_limits<float>::max()})
        return value < 0 ? -std::numeric_limits<float>::infinity() : std::numeric_limits<float>::infinity();
    const auto narrow = static_cast<float>(value);
    return value != 0.0 && narrow == 0.0F ? 0.0F : narrow;
}

// The exponent behind an "e"; null when it is none or has more digits than any file needs.
const char* readExponent(const char* text, int& exponent)
{
    const bool negative = *text == '-';
    text += negative || *text == '+' ? 1 : 0;
    quint64 value = 0;
    int digits = 0;
    text = appendDigits(text, value, digits);
    if (digits == 0 || digits > 4)
        return nullptr;
    exponent += negative ? -static_cast<int>(value) : static_cast<int>(value);
    return text;
}

// Reads a number of any length in decimal notation; null when the token is of another form.
const char* readLongFloat(const char* text, float& result)
{
    const bool negative = *text == '-';
    text += negative || *text == '+' ? 1 : 0;
    const char* const begin = text;
    quint64 mantissa = 0;
    int digits = 0;
    text = appendDigits(text, mantissa, digits);
    int exponent = 0;
    if (*text == '.') {
        const int wholeDigits = digits;
        text = appendDigits(text + 1, mantissa, digits);
        exponent = wholeDigits - digits;
    }
    if (digits == 0 || digits > kMostDigits)
        return nullptr;
    if (*text == 'e' || *text == 'E') {
        text = readExponent(text + 1, exponent);
        if (!text)
            return nullptr;
    }
    if (!tokenEndsAt(text))
        return nullptr;
    double value = 0;
    if (!exactProduct(mantissa, exponent, value)) {
        const auto parsed = std::from_chars(begin, text, value);
        if (parsed.ec != std::errc() || parsed.ptr != text)
            return nullptr;
    }
    result = narrowed(negative ? -value : value);
    return text;
}

// Reads the index at `text`, a decimal number cut to a signed 32-bit one, and returns the end of its token; null when
// the token is not of the usual form. A number with slashes is none for QString::toULongLong() and reads as 0.
const char* readIndex(const char* text, qint32& result)
{
    quint64 value = 0;
    int digits = 0;
    text = appendDigits(text, value, digits);
    if (*text == '/') {
        value = 0;
        // No token end, no zero byte and nothing that is not ASCII.
        while (*text > ' ')
            ++text;
    } else if (digits == 0 || digits > kMostDigits) {
        return nullptr;
    }
    if (!tokenEndsAt(text))
        return nullptr;
    result = static_cast<qint32>(static_cast<quint32>(value));
    return text;
}

// Reads three tokens with blanks between them; the end of the last one, or null.
template <typename Read, typename Number>
const char* readThree(const char* text, Read read, Number* numbers)
{
    for (int i = 0; i < 3; ++i) {
        text = read(skipBlanks(text), numbers[i]);
        if (!text)
            return nullptr;
    }
    return text;
}

} // namespace

const char* readLongPoint(const char* text, Vec4& point)
{
    std::array<float, 3> numbers{};
    text = readThree(text, readLongFloat, numbers.data());
    point = Vec4{numbers[0], numbers[1], numbers[2], 0.0F};
    return text;
}

const char* readLongIndices(const char* text, Indices& indices)
{
    return readThree(text, readIndex, indices.data());
}

} // namespace zr::plain
