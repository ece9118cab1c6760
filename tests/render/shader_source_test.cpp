// SPDX-License-Identifier: MIT
#include "render/shader_source.h"
#include "render/shader_texts.h"

#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

#include <vector>

namespace zr::test
{
namespace
{

/// A line of a built-in text, counted from 1, and the lines that replace it.
struct LineEdit {
    int line;
    QStringList lines;
};

using LineEdits = std::vector<LineEdit>;

struct TextCase {
    const char* name;
    const char* ShaderTexts::*text;
    bool isVertex;
    bool losesPrecisionBlock; ///< from GLSL 4.10 on
    LineEdits oldSyntax;      ///< below GLSL 1.30, and without any version
};

const TextCase kTexts[] = {
    {"plainVertex",
     &ShaderTexts::plainVertex,
     true,
     true,
     {{5, {"attribute vec4 vertex;"}},
      {6, {"attribute vec3 normal;"}},
      {7, {"varying vec3 vert;"}},
      {8, {"varying vec3 vertNormal;"}}}},
    {"geometryVertex",
     &ShaderTexts::geometryVertex,
     true,
     false,
     {{5, {"attribute vec4 vertex;"}}, {6, {"varying VS_OUT {"}}}},
    {"geometry",
     &ShaderTexts::geometry,
     true,
     true,
     // Geometry shaders are newer than this syntax; that the replacement also hits "layout " is harmless.
     {{5, {"layvarying (triangles) in;"}},
      {6, {"layvarying (triangle_strip, max_vertices = 3) out;"}},
      {7, {"attribute VS_OUT {"}},
      {11, {"varying vec3 vert;"}},
      {12, {"varying vec3 vertNormal;"}}}},
    {"fragment",
     &ShaderTexts::fragment,
     false,
     true,
     {{5, {"varying highp vec3 vert;"}},
      {6, {"varying highp vec3 vertNormal;"}},
      {7, {"//out highp vec4 gl_FragColor;"}},
      {21, {"   gl_FragColor = vec4(col + specular, 1.0);"}}}},
};

struct LevelCase {
    const char* name;
    bool modernSyntax;
    bool gpuShader4;
    QString glslVersion;
    QStringList firstLines; ///< instead of the version line
    bool hasPrecisionBlock;
};

const LevelCase kLevels[] = {
    {"110", false, false, "110", {"#version 110"}, true},
    {"110gpu4", false, true, "110", {"#version 110", "#extension GL_EXT_gpu_shader4:require", ""}, true},
    {"120", false, false, "120", {"#version 120"}, true},
    {"120gpu4", false, true, "120", {"#version 120", "#extension GL_EXT_gpu_shader4:require", ""}, true},
    {"130", true, false, "130", {"#version 130"}, true},
    {"130gpu4", true, true, "130", {"#version 130"}, true},
    {"140", true, false, "140", {"#version 140"}, true},
    {"140gpu4", true, true, "140", {"#version 140"}, true},
    {"150", true, false, "150", {"#version 150"}, true},
    {"150gpu4", true, true, "150", {"#version 150"}, true},
    {"330", true, false, "330", {"#version 330"}, true},
    {"330gpu4", true, true, "330", {"#version 330"}, true},
    {"400", true, false, "400", {"#version 400"}, true},
    {"400gpu4", true, true, "400", {"#version 400"}, true},
    {"410", true, false, "410", {"#version 410"}, false},
    {"410gpu4", true, true, "410", {"#version 410"}, false},
    {"420", true, false, "420", {"#version 420"}, false},
    {"420gpu4", true, true, "420", {"#version 420"}, false},
    {"430", true, false, "430", {"#version 430"}, false},
    {"430gpu4", true, true, "430", {"#version 430"}, false},
    {"440", true, false, "440", {"#version 440"}, false},
    {"440gpu4", true, true, "440", {"#version 440"}, false},
    {"450", true, false, "450", {"#version 450"}, false},
    {"450gpu4", true, true, "450", {"#version 450"}, false},
    {"460", true, false, "460", {"#version 460"}, false},
    {"460gpu4", true, true, "460", {"#version 460"}, false},
    {"none", false, false, "", {""}, true},
    {"noneGpu4", false, true, "", {""}, true},
    {"noneModern", true, false, "", {""}, true},
};

GlslInfo glslInfo(const LevelCase& level)
{
    GlslInfo glsl;
    glsl.modernSyntax = level.modernSyntax;
    glsl.gpuShader4 = level.gpuShader4;
    glsl.glslVersion = level.glslVersion;
    return glsl;
}

QString edited(const char* text, const LineEdits& edits)
{
    const QStringList lines = QString::fromLatin1(text).split('\n');
    QStringList result;
    for (int i = 0; i < lines.size(); ++i) {
        QStringList replacement = {lines.at(i)};
        for (const LineEdit& edit : edits)
            if (edit.line == i + 1)
                replacement = edit.lines;
        result += replacement;
    }
    return result.join('\n');
}

QString expectedSource(const TextCase& text, const LevelCase& level)
{
    LineEdits edits = {{1, level.firstLines}};
    if (text.losesPrecisionBlock && !level.hasPrecisionBlock)
        edits.insert(edits.end(), {{2, {}}, {3, {}}, {4, {}}});
    if (!level.modernSyntax)
        edits.insert(edits.end(), text.oldSyntax.begin(), text.oldSyntax.end());
    return edited(builtInShaderTexts().*text.text, edits);
}

using ShaderSourceCase = std::tuple<TextCase, LevelCase>;

class ShaderSourceTest : public ::testing::TestWithParam<ShaderSourceCase>
{
};

TEST_P(ShaderSourceTest, AdaptsTheWholeText)
{
    const auto& [text, level] = GetParam();
    const char* const builtIn = builtInShaderTexts().*text.text;
    const QString expected = expectedSource(text, level);
    EXPECT_EQ(adaptShaderSource(glslInfo(level), QString::fromLatin1(builtIn), text.isVertex), expected);
    EXPECT_EQ(prepareShaderSource(glslInfo(level), builtIn, text.isVertex), expected);
}

INSTANTIATE_TEST_SUITE_P(Levels, ShaderSourceTest,
                         ::testing::Combine(::testing::ValuesIn(kTexts), ::testing::ValuesIn(kLevels)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) + "_" + std::get<1>(row.param).name;
                         });

struct SnippetCase {
    const char* name;
    LevelCase level;
    bool isVertex;
    const char* text;
    const char* expected;
};

const LevelCase kOld = {"", false, false, "120", {}, true};
const LevelCase kOldWithGpuShader4 = {"", false, true, "120", {}, true};
const LevelCase kModern = {"", true, false, "330", {}, true};

class ShaderSnippetTest : public ::testing::TestWithParam<SnippetCase>
{
};

TEST_P(ShaderSnippetTest, Adapts)
{
    const SnippetCase& row = GetParam();
    EXPECT_EQ(adaptShaderSource(glslInfo(row.level), QString::fromLatin1(row.text), row.isVertex),
              QString::fromLatin1(row.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Snippets, ShaderSnippetTest,
    ::testing::Values(
        SnippetCase{"VertexIdWithoutGpuShader4", kOld, true, "gl_VertexID gl_VertexID", "0.0 0.0"},
        SnippetCase{"VertexIdWithGpuShader4", kOldWithGpuShader4, true, "gl_VertexID", "gl_VertexID"},
        SnippetCase{"VertexIdModern", kModern, true, "gl_VertexID", "gl_VertexID"},
        SnippetCase{"VertexIdInFragmentText", kOld, false, "gl_VertexID", "gl_VertexID"},
        SnippetCase{"EveryOccurrence", kOld, true, "in a; in b; out c; out d;",
                    "attribute a; attribute b; varying c; varying d;"},
        SnippetCase{"InsideWords", kOld, true, "main (", "maattribute ("},
        SnippetCase{"CaseMatters", kOld, true, "IN a; Out b;", "IN a; Out b;"},
        SnippetCase{"TabIsNotABlank", kOld, true, "in\ta;", "in\ta;"},
        SnippetCase{"PlainFragmentOutput", kOld, false, "out vec4 fragColor;", "//out vec4 gl_FragColor;"},
        SnippetCase{"OtherFragmentOutput", kOld, false, "out vec4 colour;", "out vec4 colour;"},
        SnippetCase{"EveryVersionLine", kModern, true, "#version 130\n#version 130", "#version 330\n#version 330"},
        SnippetCase{"NoVersionLine", kModern, true, "#version 140\n", "#version 140\n"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(PrepareShaderSource, StopsAtAZeroByte)
{
    GlslInfo glsl = glslInfo(kModern);
    glsl.glslVersion = QStringLiteral("3") + QChar(0) + QStringLiteral("30");
    EXPECT_EQ(prepareShaderSource(glsl, "#version 130\nvoid main(){}", true), QStringLiteral("#version 3"));
}

TEST(PrepareShaderSource, PassesThroughLatin1)
{
    GlslInfo glsl = glslInfo(kModern);
    glsl.glslVersion = QString(QChar(0x00E9)) + QChar(0x20AC);
    EXPECT_EQ(prepareShaderSource(glsl, "#version 130 \xE4", true),
              QStringLiteral("#version ") + QChar(0x00E9) + QStringLiteral("? ") + QChar(0x00E4));
}

TEST(PrepareShaderSource, ResultsAreIndependent)
{
    const GlslInfo glsl = glslInfo(kModern);
    const QString first = prepareShaderSource(glsl, "first", true);
    const QString second = prepareShaderSource(glsl, "2", true);
    EXPECT_EQ(first, QStringLiteral("first"));
    EXPECT_EQ(second, QStringLiteral("2"));
}

} // namespace
} // namespace zr::test
