#include "host/console.h"

#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

TEST(PrintableTest, OnlyWhatShowsReachesATerminal)
{
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"part (2).stl", "part (2).stl"},
        {"t\xc3\xbcr-\xe6\xa8\xa1.stl", "t\xc3\xbcr-\xe6\xa8\xa1.stl"},
        {"\xf0\x9f\x98\x80.stl", "\xf0\x9f\x98\x80.stl"}, // beyond the first 65,536 characters
        {"a\nb\r\x1b[31m\x7f", "a?b??[31m?"},             // line ends, sequences for terminals
        {"\xc2\x9b"
         "31m",
         "?31m"}, // the same in one character
        {"a\xe2\x80\xae"
         "b\xe2\x81\xa6",
         "a?b?"}, // that turn the order of letters round
        {"a\xe2\x80\xa8"
         "b\xe2\x80\xa9",
         "a?b?"}, // other line ends
        {"a\xf3\xa0\x80\x81"
         "b",
         "a??b"}, // tags
    };
    for (const auto& [text, shown] : cases)
        EXPECT_EQ(printable(QString::fromUtf8(text)), QString::fromUtf8(shown));
    EXPECT_EQ(printable(QString(QChar(0xD800)) + 'a'), "?a"); // half a character
}

} // namespace
} // namespace zr::test
