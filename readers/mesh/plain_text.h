#pragma once

#include <QtGlobal>

#include <array>
#include <cstring>

namespace zr
{

/// So many readable bytes must stand before and behind the text that the functions of plain_number.h are called on.
constexpr int kTextPadding = 64;

/// The corners of a face, and a fourth number that means nothing.
using Indices = std::array<qint32, 4>;

namespace plain
{

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN,
              "the first of several bytes is taken to be the lowest one of their word");

constexpr quint64 kEveryByte = 0x0101010101010101;

/// The eight bytes at `text`.
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

/// The first byte from `text` on that is no blank. Nearly always that is a letter or a digit, all of which stand above
/// the blanks.
inline const char* skipBlanks(const char* text)
{
    while (*text <= ' ' && isBlank(*text))
        ++text;
    return text;
}

/// Whether a token ends at `text`, in a way that leaves the number before it alone.
inline bool tokenEndsAt(const char* text)
{
    return isBlank(*text) || *text == '\n' || (*text == '\r' && text[1] == '\n');
}

/// All powers of ten that are doubles without rounding.
constexpr int kMostExactPower = 22;
constexpr double kPowers[kMostExactPower + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                                 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

} // namespace plain
} // namespace zr
