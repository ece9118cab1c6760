#include "readers/mesh/number_text.h"

#include "readers/mesh/plain_number.h"

#include <QString>

#include <algorithm>
#include <cstring>

namespace zr
{
namespace
{

constexpr std::array<char, 3> kByteOrderMark = {'\xEF', '\xBB', '\xBF'};

// The blank in front is no part of a number, but it keeps a byte order mark in the middle of a line from being taken
// for one at its beginning.
QString textOf(const Token& token)
{
    if (token.end - token.begin > kLongestNumber)
        return QString();
    QByteArray bytes(1, ' ');
    bytes.append(token.begin, static_cast<int>(token.end - token.begin));
    return QString::fromUtf8(bytes);
}

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

LineTokens splitLine(const char* begin, const char* end)
{
    if (const void* zero = std::memchr(begin, '\0', static_cast<std::size_t>(end - begin)))
        end = static_cast<const char*>(zero);
    if (end - begin >= 3 && std::equal(kByteOrderMark.begin(), kByteOrderMark.end(), begin))
        begin += kByteOrderMark.size();
    LineTokens line{};
    while (line.count < kMostTokens) {
        begin = std::find_if_not(begin, end, plain::isBlank);
        if (begin == end)
            break;
        const char* const tokenEnd = std::find_if(begin, end, plain::isBlank);
        line.tokens[static_cast<std::size_t>(line.count++)] = {begin, tokenEnd};
        begin = tokenEnd;
    }
    return line;
}

bool isKeyword(const Token& token, const char* keyword)
{
    const std::size_t length = std::strlen(keyword);
    return static_cast<std::size_t>(token.end - token.begin) == length &&
           std::equal(token.begin, token.end, keyword, [](char c, char key) { return lowered(c) == key; });
}

float toFloat(const Token& token)
{
    return textOf(token).toFloat();
}

qint32 toIndex(const Token& token)
{
    return static_cast<qint32>(static_cast<quint32>(textOf(token).toULongLong()));
}

} // namespace zr
