#include "readers/mesh/line_condenser.h"

#include "readers/mesh/plain_number.h"

namespace zr
{
namespace
{

// No keyword of any format is that long, a byte order mark included.
constexpr int kLongestKeyword = 16;

// A byte order mark with a blank behind it looks like a token here, but is none.
constexpr int kKeptTokens = kMostTokens + 1;

} // namespace

void LineCondenser::add(const char* begin, const char* end)
{
    for (; begin != end && !m_complete; ++begin)
        addByte(*begin);
}

void LineCondenser::addByte(char c)
{
    if (c == '\0') {
        m_complete = true;
        return;
    }
    if (plain::isBlank(c)) {
        m_complete = m_inToken && m_tokens == kKeptTokens;
        m_inToken = false;
        m_afterBlank = true;
        return;
    }
    if (!m_inToken)
        startToken();
    // One byte more than the longest is kept, so that a token that is too long stays too long.
    const int longest = m_tokens == 1 ? kLongestKeyword : kLongestNumber;
    if (m_tokenLength > longest)
        return;
    m_line.append(c);
    ++m_tokenLength;
    m_complete = m_tokens == 1 && m_tokenLength > longest;
}

void LineCondenser::startToken()
{
    // Also in front of the first token: a byte order mark behind a blank is none.
    if (m_afterBlank)
        m_line.append(' ');
    m_afterBlank = false;
    m_inToken = true;
    m_tokenLength = 0;
    ++m_tokens;
}

} // namespace zr
