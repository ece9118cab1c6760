// SPDX-License-Identifier: MIT
#pragma once

// The corners of a face as other programs write them: "7", "7/8/9", "7//9" and "-1". Where their numbers and the
// corners themselves end is looked up in two sets of bits for 64 bytes, which is most face lines at once.

#include "readers/mesh/text/fast_number.h"

namespace zr::fast
{

/// What 64 bytes are to a corner, one bit for each.
struct CornerBits {
    quint64 nonDigits;
    quint64 ends; ///< a corner has no such byte: none of the digits and "-./", which are in one row
};

#ifdef __SSE2__

inline CornerBits cornerBits(const char* text)
{
    quint64 digits = 0, parts = 0;
    for (unsigned i = 0; i < 64; i += 16) {
        // As in digitBits(): '9' is moved to the upper end of the signed bytes, with three bytes more below the digits.
        const __m128i moved = _mm_add_epi8(load16(text + i), _mm_set1_epi8(0x7F - '9'));
        const auto bitsAbove = [moved](char limit) {
            return quint64{static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpgt_epi8(moved, _mm_set1_epi8(limit))))};
        };
        digits |= bitsAbove(0x7F - 10) << i;
        parts |= bitsAbove(0x7F - 13) << i;
    }
    return {~digits, ~parts};
}

#else

inline CornerBits cornerBits(const char* text)
{
    CornerBits bits{};
    for (unsigned i = 0; i < 64; ++i) {
        bits.nonDigits |= quint64{text[i] < '0' || text[i] > '9'} << i;
        bits.ends |= quint64{text[i] < '-' || text[i] > '9'} << i;
    }
    return bits;
}

#endif

/// The number that the `count` digits at `text` make, from 1 to 8.
///
/// The first digit is in the lowest byte and goes to the highest but `count`; what comes in below it are zeros, as if
/// the number had leading ones. Each step then adds neighbours up: 10 * 256 + 1 makes two digits one number, as in
/// fourDigits(), then 100 and 1 two of these, then 10000 and 1.
inline quint32 shortNumber(const char* text, std::size_t count)
{
    quint64 bytes = (word(text) & 0x0F0F0F0F0F0F0F0FU) << (64 - 8 * count);
    bytes = (bytes * (10 * 0x100 + 1)) >> 8U & 0x00FF00FF00FF00FFU;
    bytes = (bytes * (100 * 0x10000 + 1)) >> 16U & 0x0000FFFF0000FFFFU;
    return static_cast<quint32>((bytes * (10000 * 0x100000000 + 1)) >> 32U);
}

inline bool lineEndsAt(const char* text)
{
    return *text == '\n' || (*text == '\r' && text[1] == '\n');
}

/// Calls use(number, isNegative) for each of the corners from `text` on, with the number in front of its first slash.
/// Returns the line's end; null at a corner that has no number of at most eight digits, or is followed by something
/// else. What was used until then counts for nothing.
///
/// A corner that begins `at` bytes into the bits has its end at the next bit of `ends`, and its first number, after a
/// minus, at the next one of `nonDigits`, which has all bits of `ends`. Bits run out in the middle of some corner,
/// which is where the next 64 begin.
template <typename Use>
const char* readCorners(const char* text, Use use)
{
    const char* bitsBegin = text;
    CornerBits bits = cornerBits(text);
    for (text = skipBlanks(text); !lineEndsAt(text); text = skipBlanks(text)) {
        auto at = static_cast<std::size_t>(text - bitsBegin);
        if (at >= 64 || bits.ends >> at == 0) {
            bitsBegin = text;
            bits = cornerBits(text);
            at = 0;
            if (bits.ends == 0)
                return nullptr;
        }
        const std::size_t sign = *text == '-' ? 1 : 0;
        const auto size = static_cast<std::size_t>(__builtin_ctzll(bits.ends >> at));
        const auto digits = static_cast<std::size_t>(__builtin_ctzll(bits.nonDigits >> at >> sign));
        if (digits - 1 >= 8 || !tokenEndsAt(text + size) || (sign + digits != size && text[sign + digits] != '/'))
            return nullptr;
        use(shortNumber(text + sign, digits), sign != 0);
        text += size;
    }
    return text;
}

} // namespace zr::fast
