// SPDX-License-Identifier: MIT
#include "readers/mesh/obj_statement.h"

#include "readers/mesh/text/line_tokenizer.h"
#include "readers/mesh/text/reference_number.h"

#include <charconv>
#include <cstring>
#include <string_view>

namespace zr
{
namespace
{

constexpr int kNumbersPerVertex = 3;

} // namespace

void ObjStatement::start(std::size_t positions)
{
    m_corners.start(positions);
    m_kind = ObjLineKind::Other;
    m_point = Vec4{};
    m_token.clear();
    m_tokens = 0;
    m_last = '\0';
    m_isOpen = true;
    m_isSettled = false;
}

const char* ObjStatement::add(const char* begin, const char* end)
{
    while (begin != end && m_isOpen) {
        if (m_isSettled) {
            const auto bytes = static_cast<std::size_t>(end - begin);
            const auto* const lineEnd = static_cast<const char*>(std::memchr(begin, '\n', bytes));
            m_isOpen = !lineEnd;
            return lineEnd ? lineEnd + 1 : end;
        }
        addByte(*begin++);
    }
    return begin;
}

void ObjStatement::addByte(char c)
{
    switch (c) {
    case '\n':
        endLine();
        return;
    case '\r':
        return;
    case '\0':
    case '#':
        endToken();
        m_isSettled = true;
        return;
    case ' ':
    case '\t':
        endToken();
        break;
    default:
        if (m_token.size() <= kMaxNumberBytes)
            m_token.push_back(c);
    }
    m_last = c;
}

void ObjStatement::endLine()
{
    const bool hasBackslash = m_last == '\\';
    if (hasBackslash)
        m_token.pop_back();
    endToken();
    m_last = '\0';
    m_isOpen = hasBackslash && !m_isSettled && m_kind != ObjLineKind::Other;
}

void ObjStatement::endToken()
{
    if (m_token.empty())
        return;
    if (m_tokens++ == 0)
        takeKeyword();
    else if (m_kind == ObjLineKind::Vertex)
        takeNumber();
    else
        takeCorner();
    m_token.clear();
}

void ObjStatement::takeKeyword()
{
    if (m_token == "v" || m_token == "V")
        m_kind = ObjLineKind::Vertex;
    else if (m_token == "f" || m_token == "F")
        m_kind = ObjLineKind::Face;
    else
        m_isSettled = true;
}

void ObjStatement::takeNumber()
{
    const float number = reference::toFloat(QByteArray::fromRawData(m_token.data(), static_cast<int>(m_token.size())));
    m_point[m_tokens - 2] = number;
    m_isSettled = m_tokens == 1 + kNumbersPerVertex;
}

// Only what is in front of the first slash counts.
void ObjStatement::takeCorner()
{
    std::string_view text = m_token;
    text = text.substr(0, text.find('/'));
    const bool isNegative = !text.empty() && text.front() == '-';
    if (isNegative || (!text.empty() && text.front() == '+'))
        text.remove_prefix(1);
    const char* const textEnd = text.data() + text.size();
    quint64 number = 0;
    const auto [end, error] = std::from_chars(text.data(), textEnd, number);
    if (error == std::errc() && end == textEnd)
        m_corners.add(number, isNegative);
    else
        m_corners.addInvalid();
}

} // namespace zr
