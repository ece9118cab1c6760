// SPDX-License-Identifier: MIT
// Each step of corner_tokens.h against a loop over the bytes, which says what the step does.

#include "readers/mesh/text/corner_tokens.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace zr::test
{
namespace
{

QByteArray padded(const QByteArray& text)
{
    return QByteArray(kTextPadding, '9') + text + QByteArray(kTextPadding, '9');
}

TEST(CornerTokensTest, BitsAreThoseOfTheBytes)
{
    for (int first = 0; first < 256; ++first) {
        QByteArray text;
        quint64 nonDigits = 0, ends = 0;
        for (unsigned i = 0; i < 64; ++i) {
            const char c = static_cast<char>(first + static_cast<int>(i) * 5);
            text += c;
            nonDigits |= quint64{c < '0' || c > '9'} << i;
            ends |= quint64{c < '-' || c > '9'} << i;
        }
        const fast::CornerBits bits = fast::cornerBits(text.constData());
        EXPECT_EQ(bits.nonDigits, nonDigits) << first;
        EXPECT_EQ(bits.ends, ends) << first;
    }
}

TEST(CornerTokensTest, DigitsMakeANumber)
{
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        QByteArray text;
        quint32 expected = 0;
        const std::size_t count = 1 + random() % 8;
        for (std::size_t k = 0; k < count; ++k) {
            text += static_cast<char>('0' + random() % 10);
            expected = expected * 10 + static_cast<quint32>(text.back() - '0');
        }
        EXPECT_EQ(fast::shortNumber((text + "/9 7 99999").constData(), count), expected) << text.constData();
    }
}

// The corners of a line, negative ones below 0; `isRead` when none was left to a slower way.
std::vector<qint64> cornersIn(const QByteArray& line, bool& isRead)
{
    const QByteArray text = padded(line);
    std::vector<qint64> corners;
    const auto add = [&corners](qint64 number, bool isNegative) { corners.push_back(isNegative ? -number : number); };
    const char* const end = fast::readCorners(text.constData() + kTextPadding, add);
    isRead = end != nullptr;
    EXPECT_TRUE(!isRead || fast::lineEndsAt(end)) << line.constData();
    return corners;
}

// Lines of all lengths, so that their corners lie at all places among the bytes that are looked at together.
TEST(CornerTokensTest, UsualLinesAreReadWhole)
{
    std::mt19937 random(2);
    const auto below = [&random](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    const auto number = [&] { return below(below(2) == 0 ? 10 : 100000000); };
    for (int i = 0; i < 50000; ++i) {
        QByteArray line = below(4) == 0 ? "\t " : "";
        std::vector<qint64> expected;
        for (int corners = below(12); corners > 0; --corners) {
            const int index = below(5) == 0 ? -number() : number();
            expected.push_back(index);
            line += QByteArray::number(index);
            for (int more = below(3); more > 0; --more)
                line += '/' + (below(4) == 0 ? QByteArray() : QByteArray::number(number() * (below(4) == 0 ? -1 : 1)));
            line += below(8) == 0 ? " \t " : " ";
        }
        bool isRead = false;
        EXPECT_EQ(cornersIn(line + (below(3) == 0 ? "\r\n" : "\n"), isRead), expected) << line.constData();
        EXPECT_TRUE(isRead) << line.constData();
    }
}

TEST(CornerTokensTest, WhatIsUnusualIsLeftToASlowerWay)
{
    for (const char* corner : {"x",   "/",    "/1",     "//1",      "-",     "--1",    "+1",  "1-",        "1-2",
                               "1.0", "1/2#", "1#",     "#",        "1\\",   "1/2\\",  "\\",  "123456789", "-123456789",
                               "1\v", "1\r2", "1/2\r3", "\xC2\xA0", "1\x80", "1/\xFF", "1e2", "1/x",       "1:2"}) {
        for (const char* line : {"%1\n", "%1 1 2\n", "1 2 %1\n", "1/1/1 2/2/2 %1 3/3/3\n",
                                 "12345678/12345678/12345678 12345678/12345678/12345678 12345678/12345678/123 %1\n"}) {
            bool isRead = true;
            cornersIn(QByteArray(line).replace("%1", corner), isRead);
            EXPECT_FALSE(isRead) << line << corner;
        }
    }
    // A corner longer than what is looked at together, and a line that the text ends.
    bool isRead = true;
    cornersIn("1 2 3/" + QByteArray(64, '1') + "\n", isRead);
    EXPECT_FALSE(isRead);
    cornersIn(QByteArray("1 2 3\0\n", 7), isRead);
    EXPECT_FALSE(isRead);
}

} // namespace
} // namespace zr::test
