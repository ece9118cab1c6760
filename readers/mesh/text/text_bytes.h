// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <array>
#include <cstring>

namespace zr
{

/// The number of readable bytes that there must be before and after the text that is read with the functions of
/// fast_number.h.
constexpr int kTextPadding = 64;

/// The corners of a face, and a fourth number that means nothing.
using Indices = std::array<qint32, 4>;

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN,
              "the first of several bytes is taken to be the lowest one of their word");

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

/// The first byte from `text` on that is not a blank. Nearly always that is a letter or a digit, all of which are
/// greater than the blanks.
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

/// The beginning of the line after that of `text`, which ends before `end`.
inline const char* lineAfter(const char* text, const char* end)
{
    if (*text == '\n')
        return text + 1;
    return static_cast<const char*>(std::memchr(text, '\n', static_cast<std::size_t>(end - text))) + 1;
}

} // namespace zr
