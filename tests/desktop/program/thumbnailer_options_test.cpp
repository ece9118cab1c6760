// SPDX-License-Identifier: MIT
#include "desktop/options.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace zr::desktop
{
namespace
{

using Action = Options::Action;
using Words = std::vector<std::string>;

Options parsed(Words words)
{
    words.insert(words.begin(), "zrthumbnailer");
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    const int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    return parseOptions(count, arguments.data());
}

struct ValidCase {
    Words words;
    int sizePx = 256;
    int seconds = 20;
    int mebibytes = 2048;
    bool isVerbose = false;
    const char* input = "in.stl";
    const char* output = "out.png";
};

const ValidCase kValid[] = {
    {{"in.stl", "out.png"}},
    {{"-s", "128", "in.stl", "out.png"}, 128},
    {{"-s16", "in.stl", "out.png"}, 16},
    {{"--size", "4096", "in.stl", "out.png"}, 4096},
    {{"--size=512", "in.stl", "out.png"}, 512},
    {{"in.stl", "-s", "1024", "out.png"}, 1024},
    {{"in.stl", "out.png", "-s", "64"}, 64},
    {{"-s", "64", "-s", "32", "in.stl", "out.png"}, 32},
    {{"--time-limit", "3", "in.stl", "out.png"}, 256, 3},
    {{"--time-limit=0", "--memory-limit=0", "in.stl", "out.png"}, 256, 0, 0},
    {{"--memory-limit", "512", "--verbose", "in.stl", "out.png"}, 256, 20, 512, true},
    {{"in.stl", "-"}, 256, 20, 2048, false, "in.stl", "-"},
    {{"--", "-in.stl", "-out.png"}, 256, 20, 2048, false, "-in.stl", "-out.png"},
    {{"\xff.stl", "\xfe.png"}, 256, 20, 2048, false, "\xff.stl", "\xfe.png"},
};

TEST(ThumbnailerOptionsTest, ValidCommandLines)
{
    for (const ValidCase& row : kValid) {
        SCOPED_TRACE(testing::PrintToString(row.words));
        const Options options = parsed(row.words);
        EXPECT_EQ(options.action, Action::MakeThumbnail) << options.text.constData();
        EXPECT_EQ(options.sizePx, row.sizePx);
        EXPECT_EQ(options.limits.seconds, row.seconds);
        EXPECT_EQ(options.limits.mebibytes, row.mebibytes);
        EXPECT_EQ(options.isVerbose, row.isVerbose);
        EXPECT_EQ(options.input, row.input);
        EXPECT_EQ(options.output, row.output);
    }
}

struct WrongCase {
    Words words;
    const char* reason;
};

const WrongCase kWrong[] = {
    {{}, "no INPUT given"},
    {{"in.stl"}, "no OUTPUT given"},
    {{"a.stl", "b.stl", "c.stl"}, "one INPUT and one OUTPUT, please: a process makes one thumbnail"},
    {{"", "out.png"}, "a file needs a name"},
    {{"in.stl", ""}, "a file needs a name"},
    {{"-s", "15", "in.stl", "out.png"}, "--size needs a whole number from 16 to 4096"},
    {{"-s", "4097", "in.stl", "out.png"}, "--size needs a whole number from 16 to 4096"},
    {{"-s", "", "in.stl", "out.png"}, "--size needs a whole number from 16 to 4096"},
    {{"-s", "128px", "in.stl", "out.png"}, "--size needs a whole number from 16 to 4096"},
    {{"-s", " 128", "in.stl", "out.png"}, "--size needs a whole number from 16 to 4096"},
    {{"-s", "99999999999", "in.stl", "out.png"}, "--size needs a whole number from 16 to 4096"},
    {{"--time-limit", "-1", "in.stl", "out.png"}, "--time-limit needs a whole number from 0 to 86400"},
    {{"--memory-limit", "2G", "in.stl", "out.png"}, "--memory-limit needs a whole number from 0 to 2147483647"},
    {{"in.stl", "out.png", "-s"}, "--size needs a value"},
    {{"in.stl", "out.png", "--time-limit"}, "--time-limit needs a value"},
    {{"--verbose=1", "in.stl", "out.png"}, "--verbose takes no value"},
    {{"-x", "in.stl", "out.png"}, "there is no option -x"},
    {{"--sise", "64", "in.stl", "out.png"}, "there is no option --sise"},
    {{"--\x1b[31m", "in.stl", "out.png"}, "there is no option --?[31m"},
};

TEST(ThumbnailerOptionsTest, WrongOnesAreRejectedInOneSentence)
{
    for (const WrongCase& row : kWrong) {
        SCOPED_TRACE(testing::PrintToString(row.words));
        const Options options = parsed(row.words);
        EXPECT_EQ(options.action, Action::RejectUsage);
        EXPECT_EQ(options.text, QByteArray("zrthumbnailer: ") + row.reason + "\nTry 'zrthumbnailer --help'.\n");
    }
}

TEST(ThumbnailerOptionsTest, HelpAndVersionAreShownWhateverElseIsThere)
{
    for (const char* word : {"-h", "--help"}) {
        const Options options = parsed({"in.stl", word});
        EXPECT_EQ(options.action, Action::ShowText);
        EXPECT_TRUE(options.text.startsWith("Usage: zrthumbnailer "));
    }
    for (const char* word : {"-v", "--version"}) {
        const Options options = parsed({word});
        EXPECT_EQ(options.action, Action::ShowText);
        EXPECT_TRUE(options.text.startsWith("zrthumbnailer 1."));
    }
}

} // namespace
} // namespace zr::desktop
