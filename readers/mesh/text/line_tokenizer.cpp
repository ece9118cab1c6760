// SPDX-License-Identifier: MIT
#include "readers/mesh/text/line_tokenizer.h"

#include "readers/mesh/text/text_bytes.h"

namespace zr
{
namespace
{

constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

// No keyword of any format is that long, nor is a byte order mark.
constexpr int kMaxKeywordBytes = 16;

} // namespace

void LineTokenizer::add(const char* begin, const char* end)
{
    for (; begin != end && !m_complete; ++begin)
        addByte(*begin);
}

void LineTokenizer::addByte(char c)
{
    if (c == '\0' || (isBlank(c) && m_inToken && m_tokens.size() == kMaxTokens)) {
        m_complete = true;
        return;
    }
    if (isBlank(c)) {
        m_inToken = false;
        m_mayBeMark = false;
        return;
    }
    if (!m_inToken)
        m_tokens.append(QByteArray());
    m_inToken = true;
    QByteArray& token = m_tokens.last();
    if (token.size() <= (m_tokens.size() == 1 ? kMaxKeywordBytes : kMaxNumberBytes))
        token.append(c);
    if (m_mayBeMark && token == kByteOrderMark) {
        m_tokens.clear();
        m_inToken = false;
        m_mayBeMark = false;
    }
}

QByteArrayList tokensOf(const char* begin, const char* end)
{
    LineTokenizer line;
    line.add(begin, end);
    return line.tokens();
}

} // namespace zr
