// SPDX-License-Identifier: MIT
#include "shell/registry_script.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

using Removal = RegistryKeyEntry::Removal;
using Root = RegistryBranch::Root;
using Lines = std::vector<std::wstring>;

std::wstring flagOf(Removal removal)
{
    switch (removal) {
    case Removal::WithEverything:
        return L"ForceRemove ";
    case Removal::Never:
        return L"NoRemove ";
    case Removal::WhenEmpty:
        break;
    }
    return {};
}

std::wstring rootName(Root root)
{
    switch (root) {
    case Root::ClassesRoot:
        return L"HKCR";
    case Root::CurrentUser:
        return L"HKCU";
    case Root::LocalMachine:
        break;
    }
    return L"HKLM";
}

std::wstring valueText(const RegistryValue& value)
{
    const auto* const text = std::get_if<std::wstring>(&value.data);
    return value.name + L"=" + (text ? L"\"" + *text + L"\"" : std::to_wstring(std::get<std::uint32_t>(value.data)));
}

void describeKey(const RegistryKeyEntry& key, const std::wstring& parent, Lines& lines)
{
    const std::wstring path = parent + L"\\" + key.name;
    lines.push_back(flagOf(key.removal) + path);
    for (const RegistryValue& value : key.values)
        lines.push_back(path + L" " + valueText(value));
    for (const RegistryKeyEntry& subkey : key.subkeys)
        describeKey(subkey, path, lines);
}

// One line for each key and each value, in the script's order.
Lines describe(const std::wstring& text, const RegistryReplacements& replacements = {})
{
    const auto script = parseRegistryScript(text, replacements);
    if (!script)
        return {L"not a script"};
    Lines lines;
    for (const RegistryBranch& branch : *script) {
        for (const RegistryKeyEntry& key : branch.keys)
            describeKey(key, rootName(branch.root), lines);
    }
    return lines;
}

TEST(RegistryScriptTest, KeysNestAndKeepTheirOrder)
{
    EXPECT_EQ(describe(L"HKCR\r\n{\r\n\tOne\r\n\t{\r\n\t\tTwo\r\n\t\t{\r\n\t\t\tThree\r\n\t\t}\r\n\t\tFour\r\n\t}\r\n"
                       L"\tFive\r\n}\r\n"),
              Lines({L"HKCR\\One", L"HKCR\\One\\Two", L"HKCR\\One\\Two\\Three", L"HKCR\\One\\Four", L"HKCR\\Five"}));
}

TEST(RegistryScriptTest, KeysHaveFlagsInAnyCase)
{
    EXPECT_EQ(describe(L"HKCR { ForceRemove A noremove B { FORCEREMOVE C NoRemove D = s 'x' } E }"),
              Lines({L"ForceRemove HKCR\\A", L"NoRemove HKCR\\B", L"ForceRemove HKCR\\B\\C", L"NoRemove HKCR\\B\\D",
                     L"HKCR\\B\\D =\"x\"", L"HKCR\\E"}));
}

TEST(RegistryScriptTest, ValuesAreStringsAndNumbers)
{
    EXPECT_EQ(describe(L"HKCR { K = s 'default' { val Name = s 'two words' val 'Other name' = d 0 "
                       L"val Most = D '4294967295' val Empty = S '' } L = d 7 }"),
              Lines({L"HKCR\\K", L"HKCR\\K =\"default\"", L"HKCR\\K Name=\"two words\"", L"HKCR\\K Other name=0",
                     L"HKCR\\K Most=4294967295", L"HKCR\\K Empty=\"\"", L"HKCR\\L", L"HKCR\\L =7"}));
}

TEST(RegistryScriptTest, QuotesMayContainAnything)
{
    EXPECT_EQ(describe(L"HKCR { 'a key' = s 'it''s' '{' 'val' 'NoRemove' { '=' } {GUID} = s bare }"),
              Lines({L"HKCR\\a key", L"HKCR\\a key =\"it's\"", L"HKCR\\{", L"HKCR\\val", L"HKCR\\NoRemove",
                     L"HKCR\\NoRemove\\=", L"HKCR\\{GUID}", L"HKCR\\{GUID} =\"bare\""}));
}

TEST(RegistryScriptTest, PlaceholdersAreReplaced)
{
    const RegistryReplacements replacements = {{L"MODULE", L"C:\\it's 100%NAME%.dll"}, {L"NAME", L"{ val }"}};
    EXPECT_EQ(
        describe(L"HKCR { %NAME% = s '%MODULE%' A%NAME%B = s 100%% { val %% = s '<%NAME%%NAME%>' } }", replacements),
        Lines({L"HKCR\\{ val }", L"HKCR\\{ val } =\"C:\\it's 100%NAME%.dll\"", L"HKCR\\A{ val }B",
               L"HKCR\\A{ val }B =\"100%\"", L"HKCR\\A{ val }B %=\"<{ val }{ val }>\""}));
}

TEST(RegistryScriptTest, RootsHaveShortAndLongNames)
{
    EXPECT_EQ(describe(L"HKCU { A } hklm { B } HKEY_CLASSES_ROOT { C } HKEY_CURRENT_USER { D } "
                       L"HKEY_LOCAL_MACHINE { E }"),
              Lines({L"HKCU\\A", L"HKLM\\B", L"HKCR\\C", L"HKCU\\D", L"HKLM\\E"}));
}

TEST(RegistryScriptTest, EmptyScriptsHaveNoKeys)
{
    EXPECT_EQ(describe(L""), Lines());
    EXPECT_EQ(describe(L" \r\n\t"), Lines());
    EXPECT_EQ(describe(L"HKCR { }"), Lines());
    EXPECT_EQ(describe(L"HKCR { } HKCU { }"), Lines());
}

class BadRegistryScriptTest : public ::testing::TestWithParam<const wchar_t*>
{
};

TEST_P(BadRegistryScriptTest, IsRefused)
{
    EXPECT_FALSE(parseRegistryScript(GetParam(), {{L"MODULE", L"m"}}));
}

constexpr const wchar_t* kBadScripts[] = {
    L"HKCR",                                // nothing below the root
    L"HKXX { A }",                          // unknown root
    L"'HKCR' { A }",                        // a quoted root
    L"{ A }",                               // no root
    L"HKCR = s 'x' { A }",                  // a value of the root
    L"HKCR { val A = s 'x' }",              // a named value of the root
    L"HKCR { A",                            // not closed
    L"HKCR { A { B }",                      // the outer block not closed
    L"HKCR { A } }",                        // closed twice
    L"HKCR { A = }",                        // no value
    L"HKCR { A = s }",                      // no text, and not closed
    L"HKCR { A = 'x' }",                    // no type
    L"HKCR { A = b '00' }",                 // unknown type
    L"HKCR { A = 's' 'x' }",                // a quoted type
    L"HKCR { A = d 12x }",                  // not a number
    L"HKCR { A = d -1 }",                   // not a DWORD
    L"HKCR { A = d '' }",                   // no number
    L"HKCR { A = d 4294967296 }",           // too large
    L"HKCR { A = d 18446744073709551616 }", // too large for 64 bits
    L"HKCR { A { val = s 'x' } }",          // no name
    L"HKCR { A { val V } }",                // a named value without a value
    L"HKCR { A { val V = s 'x' { B } } }",  // a value with a block
    L"HKCR { = s 'x' }",                    // no key
    L"HKCR { '' }",                         // an empty key
    L"HKCR { { B } }",                      // a block without a key
    L"HKCR { NoRemove }",                   // a flag without a key
    L"HKCR { NoRemove ForceRemove A }",     // two flags
    L"HKCR { Delete A }",                   // a command that is not part of the syntax
    L"HKCR { A\\B }",                       // a path
    L"HKCR { 'A }",                         // an open quote
    L"HKCR { A = s 'x'' }",                 // an open quote after a doubled one
    L"HKCR { %MODULE }",                    // an open mark
    L"HKCR { A = s '%UNKNOWN%' }",          // an unknown mark
};

INSTANTIATE_TEST_SUITE_P(All, BadRegistryScriptTest, ::testing::ValuesIn(kBadScripts));

TEST(RegistryScriptTest, TruncatedScriptsAreRefused)
{
    const std::wstring script = L"HKCR { NoRemove A = s 'it''s' { val B = d 12 ForceRemove C = s '%MODULE%' } }";
    const RegistryReplacements replacements = {{L"MODULE", L"m"}};
    ASSERT_TRUE(parseRegistryScript(script, replacements));
    for (std::size_t length = 1; length < script.size(); ++length)
        EXPECT_FALSE(parseRegistryScript(script.substr(0, length), replacements)) << length;
}

TEST(RegistryScriptTest, DepthIsLimited)
{
    const auto nested = [](int depth) {
        std::wstring text = L"HKCR {";
        for (int i = 0; i < depth; ++i)
            text += L" K {";
        for (int i = 0; i <= depth; ++i)
            text += L" }";
        return text;
    };
    EXPECT_TRUE(parseRegistryScript(nested(64), {}));
    EXPECT_FALSE(parseRegistryScript(nested(65), {}));
    EXPECT_FALSE(parseRegistryScript(nested(100000), {}));
}

} // namespace
} // namespace zr::test
