// SPDX-License-Identifier: MIT
#include "core/printable.h"

#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

TEST(PrintableTest, OnlyPrintableCharactersReachATerminal)
{
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"part (2).stl", "part (2).stl"},
        {"t\xc3\xbcr-\xe6\xa8\xa1.stl", "t\xc3\xbcr-\xe6\xa8\xa1.stl"},
        {"\xf0\x9f\x98\x80.stl", "\xf0\x9f\x98\x80.stl"}, // beyond the first 65,536 characters
        {"a\nb\r\x1b[31m\x7f", "a?b??[31m?"},             // line ends, sequences for terminals
        {"\xc2\x9b[31m", "?[31m"},                        // the same in one character
        {"a\xf3\xa0\x80\x81z", "a??z"},                   // tags
    };
    for (const auto& [text, shown] : cases)
        EXPECT_EQ(printable(QString::fromUtf8(text)), QString::fromUtf8(shown));
    EXPECT_EQ(printable(QString(QChar(0xD800)) + 'a'), "?a"); // half a character
    // Other line ends, and characters that reverse the order of letters.
    for (const int control : {0x2028, 0x2029, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E, 0x2066, 0x2067, 0x2068, 0x2069})
        EXPECT_EQ(printable('a' + QString(QChar(control)) + 'b'), "a?b") << control;
}

} // namespace
} // namespace zr::test
