// SPDX-License-Identifier: MIT
#include "tests/readers/mesh/text/odd_lines.h"

namespace zr::test
{
namespace
{

const std::vector<QByteArray>& oddTokens()
{
    static const std::vector<QByteArray> tokens = {
        "nan", "NaN", "-nan", "inf", "-inf", "+inf", "INF", "infinity", "1e39", "-1e39", "1e400", "-1e400", "1e-50",
        "-1e-50", "1e-400", "0x10", "1,5", "1_0", "1;", "1%", "+5", "--5", "+-5", "-0", "+0", "-0.0", ".5", "-.5", "5.",
        ".", "-", "+", "e5", ".e5", "1e", "1e+", "1e-", "1e+5", "1E-5", "1.e5", "1e5.0", "1.2.3", "1e1e1", "1d5", "1f",
        "00012", "1e0005", "1e+001", "1e00000000005", "1e22", "1e23", "1e-22", "1e-23", "0e99999", "-0e5",
        "3.4028234663852886e38", "3.4028235e38", "3.4028235677973362e38", "3.4028235677973366e38", "1.1754943e-38",
        "1.40129846e-45", "7e-46", "7.1e-46", "9007199254740993", "9007199254740992", "123456789012345",
        "1234567890123456", "1234567890123456789", "12345678901234567890", "123456789012345678901234567890",
        "0.1234567890123456789", "0.000000000000000000000001", "100000000000000000000000000000000000000",
        // Halfway between two floats, and next to it.
        "1.00000005960464477539", "1.0000000596046448", "1.00000005960464477540", "16777217", "16777217.0000000001",
        "1/2/3", "1//2", "1/2", "/1", "-1", "-2147483648", "2147483647", "2147483648", "4294967295", "4294967296",
        "18446744073709551615", "18446744073709551616", "1.0", "1e2", "0", "1", "2", "3", "01", "\302\2401",
        "1\xC2\xA0", "\2401", "1\xC2\x85", "\357\273\2771", "\xD9\xA1", "\342\210\2225", "\xC3", "1\xFF",
        "\xF0\x9F\x98\x80", "\v1\f", "1\v", "\r", "1\r", "\r1", "\f", "\0341", "abc", "#", "\"", "1-", "1+1"};
    return tokens;
}

} // namespace

QByteArray OddLines::pick(const std::vector<QByteArray>& choices)
{
    return choices[m_random() % choices.size()];
}

QByteArray OddLines::digits(int max)
{
    QByteArray text;
    for (int count = below(max + 1); count > 0; --count)
        text += static_cast<char>('0' + below(10));
    return text;
}

QByteArray OddLines::number()
{
    if (oneIn(3))
        return pick(oddTokens());
    QByteArray text = pick({"", "", "-", "+"}) + digits(oneIn(8) ? 25 : 5);
    if (!oneIn(4))
        text += '.' + digits(oneIn(8) ? 25 : 9);
    if (oneIn(3))
        text += pick({"e", "E"}) + pick({"", "-", "+"}) + digits(oneIn(4) ? 4 : 2);
    return text;
}

QByteArray OddLines::blanks()
{
    return oneIn(3) ? pick({"\t", "\t\t", " \t", "\t ", "  ", " \t \t ", "   "}) : QByteArray(" ");
}

QByteArray OddLines::line(const std::vector<QByteArray>& keywords)
{
    QByteArray text = oneIn(3) ? blanks() : QByteArray();
    if (oneIn(40))
        text = "\xEF\xBB\xBF" + text;
    text += oneIn(10) ? number() : pick(keywords);
    for (int tokens = oneIn(3) ? below(7) : 3; tokens > 0; --tokens)
        text += blanks() + number();
    if (oneIn(6))
        text += blanks();
    if (oneIn(30) && !text.isEmpty())
        text[below(text.size())] = static_cast<char>(below(256));
    if (oneIn(30))
        text.insert(below(text.size() + 1), '\0');
    return text + pick({"\n", "\n", "\n", "\r\n", "\r\n", "\n\n", "\r", "\r\r\n", ""});
}

QByteArray OddLines::lines(int count, const std::vector<QByteArray>& keywords)
{
    QByteArray text;
    while (count-- > 0)
        text += line(keywords);
    return text;
}

} // namespace zr::test
