// SPDX-License-Identifier: MIT
#include "render/shader_texts.h"

#include "tests/support/qt_printers.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

struct TextCase {
    const char* name;
    const char* ShaderTexts::*text;
    int bytes;
    const char* sha256;
    const char* secondLine;
};

class ShaderTextsTest : public ::testing::TestWithParam<TextCase>
{
};

TEST_P(ShaderTextsTest, KeepsEachByte)
{
    const TextCase& row = GetParam();
    const QByteArray text = builtInShaderTexts().*row.text;
    EXPECT_EQ(text.size(), row.bytes);
    EXPECT_EQ(QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex(), QByteArray(row.sha256));
    EXPECT_EQ(text.split('\n').value(0), "#version 130");
    EXPECT_EQ(text.split('\n').value(1), row.secondLine);
    EXPECT_TRUE(text.endsWith("}\n"));
    EXPECT_FALSE(text.contains('\r'));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ShaderTextsTest,
    ::testing::Values(TextCase{"plainVertex", &ShaderTexts::plainVertex, 332,
                               "be02171b3975ef90d6b0fd80aaf8d8a35d87efb2b04cae222f2d0dac6f88f259", "#ifdef GL_ES "},
                      TextCase{"geometryVertex", &ShaderTexts::geometryVertex, 330,
                               "a062db5795e3fc970afa6c1936d74e8dc9c250837f9d68bae796fbcd1651ec14", "#ifdef GL_ES"},
                      TextCase{"geometry", &ShaderTexts::geometry, 654,
                               "0e485520b672c382cc63ef583554ad2e8fc29f206cc3430f55d9f54a27e213d2", "#ifdef GL_ES "},
                      TextCase{"fragment", &ShaderTexts::fragment, 723,
                               "6032048073a58f19749ed377df3b2b86acdcadbe0b664ae7055ea08b71efde16", "#ifdef GL_ES "}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ShaderTexts, OnlyTheGeometryTextIsIndentedByTabs)
{
    const QByteArray geometry = builtInShaderTexts().geometry;
    EXPECT_EQ(geometry.count('\t'), 14);
    EXPECT_EQ(geometry.count("\n\t"), 14);
    EXPECT_FALSE(QByteArray(builtInShaderTexts().plainVertex).contains('\t'));
    EXPECT_FALSE(QByteArray(builtInShaderTexts().geometryVertex).contains('\t'));
    EXPECT_FALSE(QByteArray(builtInShaderTexts().fragment).contains('\t'));
}

} // namespace
} // namespace zr::test
