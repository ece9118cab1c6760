// SPDX-License-Identifier: MIT
// The renderer on each version of OpenGL. Mesa reports the versions that its environment names, and its compiler
// accepts no others.

#include "tests/render/child_process.h"
#include "tests/render/renderer_under_test.h"
#include "tests/support/qt_printers.h"

namespace zr::test
{
namespace
{

struct VersionCase {
    const char* name;
    const char* openGl;     ///< what the default context reports
    const char* glsl;       ///< what its compiler accepts
    const char* extensions; ///< taken away
    bool modernSyntax;
    bool gpuShader4;
    int versionCode;
    const char* glslVersion;
};

const VersionCase kVersions[] = {
    {"V15", "1.5", "110", "", false, false, 0x15, ""},
    {"V20", "2.0", "110", "", false, true, 0x20, "110"},
    {"V20WithoutGpuShader4", "2.0", "110", "-GL_EXT_gpu_shader4", false, false, 0x20, "110"},
    {"V21", "2.1", "120", "", false, true, 0x21, "120"},
    {"V21WithoutGpuShader4", "2.1", "120", "-GL_EXT_gpu_shader4", false, false, 0x21, "120"},
    {"V30", "3.0", "130", "", true, false, 0x30, "130"},
    {"V31", "3.1COMPAT", "140", "", true, false, 0x31, "140"},
    {"V32", "3.2COMPAT", "150", "", true, false, 0x32, "150"},
    {"V33", "3.3COMPAT", "330", "", true, false, 0x33, "330"},
    {"V33Core", "3.3", "330", "", true, false, 0x33, "330"},
    {"V34", "3.4COMPAT", "330", "", true, false, 0x33, "330"},
    {"V40", "4.0COMPAT", "400", "", true, false, 0x40, "400"},
    {"V41", "4.1COMPAT", "410", "", true, false, 0x41, "410"},
    {"V42", "4.2COMPAT", "420", "", true, false, 0x42, "420"},
    {"V43", "4.3COMPAT", "430", "", true, false, 0x43, "430"},
    {"V44", "4.4COMPAT", "440", "", true, false, 0x44, "440"},
    {"V45", "4.5COMPAT", "450", "", true, false, 0x45, "450"},
    {"V46", "4.6COMPAT", "460", "", true, false, 0x46, "460"},
    {"V49", "4.9COMPAT", "460", "", true, false, 0x46, "460"},
    {"V50", "5.0COMPAT", "460", "", true, false, 0x46, "460"},
    {"V46WithOlderCompiler", "4.6COMPAT", "330", "", true, false, 0x33, "330"},
    {"V46WithOldCompiler", "4.6COMPAT", "120", "", false, true, 0x21, "120"},
    {"V33WithNewerCompiler", "3.3COMPAT", "460", "", true, false, 0x33, "330"},
};

class GlVersionTest : public RendererTest, public ::testing::WithParamInterface<VersionCase>
{
};

INSTANTIATE_TEST_SUITE_P(Versions, GlVersionTest, ::testing::ValuesIn(kVersions),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(GlVersionTest, ChoosesTheHighestLevelThatCompiles)
{
    const VersionCase& row = GetParam();
    if (!isChildProcess()) {
        runCurrentTestInChild({{"MESA_GL_VERSION_OVERRIDE", row.openGl},
                               {"MESA_GLSL_VERSION_OVERRIDE", row.glsl},
                               {"MESA_EXTENSION_OVERRIDE", row.extensions},
                               {"MESA_SHADER_CACHE_DISABLE", "true"}});
        return;
    }
    RendererUnderTest renderer;
    EXPECT_TRUE(renderer.m_valid);
    EXPECT_TRUE(renderer.isCurrent());
    EXPECT_EQ(renderer.m_glsl.modernSyntax, row.modernSyntax);
    EXPECT_EQ(renderer.m_glsl.gpuShader4, row.gpuShader4);
    EXPECT_EQ(renderer.m_glsl.versionCode, row.versionCode);
    EXPECT_EQ(renderer.m_glsl.glslVersion, QString(row.glslVersion));

    SampleMesh mesh;
    mesh.addBox({0, 0, 0}, {10, 20, 5});
    expectSamePicture(renderer.render(mesh), rasterise(mesh));
    EXPECT_EQ(logMessages(), QStringList());
}

} // namespace
} // namespace zr::test
