#pragma once

#include <QtGlobal>

#include <array>

// Lines of text models, told apart as Qt does it: the line is text in UTF-8 up to its first zero byte, its tokens lie
// between runs of blanks and tabs, and numbers are what QString makes of a token.

namespace zr
{

/// A run of bytes within a line, not owned.
struct Token {
    const char* begin;
    const char* end;
};

/// The tokens of a line that matter; further ones are not looked at.
constexpr int kMostTokens = 4;

struct LineTokens {
    std::array<Token, kMostTokens> tokens;
    int count;
};

/// The first tokens of the line [begin, end). Its terminator belongs to it: attached to the last token, or behind
/// trailing blanks a token of its own.
LineTokens splitLine(const char* begin, const char* end);

/// Whether the token equals `keyword`, which is in lower case, but for its case.
bool isKeyword(const Token& token, const char* keyword);

/// Longer tokens are taken for no number. Qt's own way of reading them would need ten times their size in memory.
constexpr int kLongestNumber = 16 << 20;

/// QString::toFloat() of the token.
float toFloat(const Token& token);

/// QString::toULongLong() of the token in base 10, cut to a signed 32-bit number.
qint32 toIndex(const Token& token);

} // namespace zr
