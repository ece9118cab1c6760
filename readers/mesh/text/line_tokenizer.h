// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>

namespace zr
{

/// The tokens of a line that matter; further ones are not looked at.
constexpr int kMaxTokens = 4;

/// Longer tokens are not taken for numbers. Qt's own way of reading them would need ten times their size in memory.
constexpr int kMaxNumberBytes = 16 << 20;

/// Splits one line, whole or in pieces, into its first tokens, as Qt does it: the line is text up to its first zero
/// byte, without a byte order mark at its beginning, and its tokens lie between runs of blanks and tabs. The line's
/// terminator belongs to it: attached to the last token, or after trailing blanks a token of its own.
class LineTokenizer
{
public:
    /// Takes the next bytes of the line.
    void add(const char* begin, const char* end);

    /// The tokens, at most kMaxTokens. A token that is too long for a keyword or a number is cut where it is
    /// still too long: a file without line ends needs no memory of its own size.
    const QByteArrayList& tokens() const { return m_tokens; }

private:
    void addByte(char c);

    QByteArrayList m_tokens;
    bool m_inToken = false;
    bool m_mayBeMark = true; ///< all bytes so far may belong to a byte order mark
    bool m_complete = false; ///< nothing that follows matters
};

/// The tokens of the whole line [begin, end).
QByteArrayList tokensOf(const char* begin, const char* end);

} // namespace zr
