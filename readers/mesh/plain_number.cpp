#include "readers/mesh/plain_number.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace zr::plain
{
namespace
{

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

} // namespace

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

} // namespace zr::plain
