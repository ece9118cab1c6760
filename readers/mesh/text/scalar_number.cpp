// SPDX-License-Identifier: MIT
#include "readers/mesh/text/scalar_number.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace zr::scalar
{
namespace
{

// As QString::toFloat() narrows: beyond the max float lies infinity, even where rounding would lead back to it, and
// what is too small becomes a zero without a sign.
float narrowed(double value)
{
    if (std::fabs(value) > double{std::numeric_limits<float>::max()})
        return value < 0 ? -std::numeric_limits<float>::infinity() : std::numeric_limits<float>::infinity();
    const auto narrow = static_cast<float>(value);
    return value != 0.0 && narrow == 0.0F ? 0.0F : narrow;
}

// The end of the number that from_chars() reads; null when that is not the end of its token. An infinity is a word to
// it, too, which Qt spells in fewer ways. A number longer than the padding does not.
template <typename Number>
const char* readNumber(const char* text, Number& number)
{
    if (text[*text == '-' ? 1 : 0] > '9')
        return nullptr;
    const auto [end, error] = std::from_chars(text, text + kTextPadding, number);
    return error == std::errc() && tokenEndsAt(end) ? end : nullptr;
}

const char* readFloat(const char* text, float& result)
{
    double number = 0;
    text = readNumber(text, number);
    result = narrowed(number);
    return text;
}

// The token of a number with slashes may hold anything up to its end but a zero byte, which ends the line.
const char* readIndex(const char* text, qint32& result)
{
    const char* end = text;
    while (*end >= '0' && *end <= '9')
        ++end;
    if (*end == '/') {
        result = 0;
        while (*end > ' ')
            ++end;
        return tokenEndsAt(end) ? end : nullptr;
    }
    quint64 number = 0;
    text = readNumber(text, number);
    result = static_cast<qint32>(static_cast<quint32>(number));
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

const char* readPoint(const char* text, Vec4& point)
{
    std::array<float, 3> numbers{};
    text = readThree(text, readFloat, numbers.data());
    point = Vec4{numbers[0], numbers[1], numbers[2], 0.0F};
    return text;
}

const char* readIndices(const char* text, Indices& indices)
{
    return readThree(text, readIndex, indices.data());
}

} // namespace zr::scalar
