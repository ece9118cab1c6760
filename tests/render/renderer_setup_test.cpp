// SPDX-License-Identifier: MIT
// The state after a construction that succeeded: context, program, vertex layout, camera.

#include "render/camera.h"
#include "tests/render/renderer_under_test.h"
#include "tests/support/qt_printers.h"

#include <array>

namespace zr::test
{
namespace
{

class RendererSetupTest : public RendererTest
{
};

TEST_F(RendererSetupTest, LogsNothingAndStaysCurrent)
{
    const RendererUnderTest renderer;
    EXPECT_TRUE(renderer.m_valid);
    EXPECT_TRUE(renderer.isCurrent());
    EXPECT_EQ(renderer.m_functions, renderer.m_context->functions());
    EXPECT_EQ(renderer.m_context->surface(), renderer.m_surface.get());
    EXPECT_FALSE(renderer.usesGeometryShader());
    EXPECT_EQ(renderer.m_fbo, nullptr);
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(RendererSetupTest, GeometryShaderIsReported)
{
    const RendererUnderTest renderer(true, RendererUnderTest::Pipeline::GeometryShader);
    EXPECT_TRUE(renderer.m_valid);
    EXPECT_TRUE(renderer.usesGeometryShader());
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(RendererSetupTest, NoContextStaysCurrentAfterDestruction)
{
    {
        const RendererUnderTest renderer;
    }
    EXPECT_EQ(QOpenGLContext::currentContext(), nullptr);
}

TEST_F(RendererSetupTest, ProbeReportsTheVersionOfTheContext)
{
    const RendererUnderTest renderer;
    const QSurfaceFormat format = renderer.m_context->format();
    EXPECT_EQ(format.majorVersion() * 16 + format.minorVersion(), renderer.m_glsl.versionCode);
    EXPECT_GE(renderer.m_glsl.versionCode, 0x20);
    EXPECT_EQ(renderer.m_glsl.modernSyntax, renderer.m_glsl.versionCode >= 0x30);
    EXPECT_FALSE(renderer.m_glsl.glslVersion.isEmpty());
}

TEST(GlslInfoDefaults, AreTheMinimum)
{
    const GlslInfo glsl;
    EXPECT_TRUE(glsl.modernSyntax);
    EXPECT_FALSE(glsl.gpuShader4);
    EXPECT_EQ(glsl.versionCode, 0x20);
    EXPECT_EQ(glsl.glslVersion, QStringLiteral("110"));
}

struct FormatCase {
    int versionCode;
    bool modernSyntax;
    int major;
    int minor;
    QSurfaceFormat::OpenGLContextProfile profile;
};

class RenderFormatTest : public ::testing::TestWithParam<FormatCase>
{
};

TEST_P(RenderFormatTest, AsksForVersionAndProfileOnly)
{
    const FormatCase& row = GetParam();
    GlslInfo glsl;
    glsl.versionCode = row.versionCode;
    glsl.modernSyntax = row.modernSyntax;
    QSurfaceFormat expected;
    expected.setVersion(row.major, row.minor);
    expected.setProfile(row.profile);
    EXPECT_EQ(RendererUnderTest::renderFormat(glsl), expected);
}

INSTANTIATE_TEST_SUITE_P(Versions, RenderFormatTest,
                         ::testing::Values(FormatCase{0x15, false, 1, 5, QSurfaceFormat::CompatibilityProfile},
                                           FormatCase{0x20, false, 2, 0, QSurfaceFormat::CompatibilityProfile},
                                           FormatCase{0x21, false, 2, 1, QSurfaceFormat::CompatibilityProfile},
                                           FormatCase{0x30, true, 3, 0, QSurfaceFormat::CoreProfile},
                                           FormatCase{0x33, true, 3, 3, QSurfaceFormat::CoreProfile},
                                           FormatCase{0x46, true, 4, 6, QSurfaceFormat::CoreProfile}),
                         [](const auto& row) { return "Code" + std::to_string(row.param.versionCode); });

TEST_F(RendererSetupTest, CameraIsThatOfThePicture)
{
    for (const bool isPerspective : {true, false}) {
        const RendererUnderTest renderer(isPerspective);
        const CameraMatrices camera = cameraMatrices({400, 400}, isPerspective);
        EXPECT_EQ(renderer.m_perspective, isPerspective);
        EXPECT_EQ(renderer.m_size, QSize(400, 400));
        EXPECT_EQ(renderer.m_projection, camera.projection);
        EXPECT_EQ(renderer.m_rotation, camera.rotation);
        EXPECT_EQ(renderer.m_view, camera.view);
        EXPECT_TRUE(renderer.m_model.isIdentity());
    }
}

TEST_F(RendererSetupTest, ViewportAndClearColour)
{
    const RendererUnderTest renderer;
    std::array<GLint, 4> viewport = {};
    renderer.m_functions->glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 400, 400}));
    std::array<GLfloat, 4> colour = {};
    renderer.m_functions->glGetFloatv(GL_COLOR_CLEAR_VALUE, colour.data());
    EXPECT_EQ(colour, (std::array<GLfloat, 4>{1, 1, 1, 0}));
}

struct LayoutCase {
    const char* name;
    RendererUnderTest::Pipeline pipeline;
    GLuint attribute;
    int isEnabled;
    int stride;
    quintptr offset;
};

class VertexLayoutTest : public RendererSetupTest, public ::testing::WithParamInterface<LayoutCase>
{
};

TEST_P(VertexLayoutTest, IsKeptInTheVertexArray)
{
    const LayoutCase& row = GetParam();
    RendererUnderTest renderer(true, row.pipeline);
    ASSERT_TRUE(renderer.m_vao.isCreated());
    const QOpenGLVertexArrayObject::Binder binder(&renderer.m_vao);
    const auto value = [&](GLenum name) {
        GLint number = -1;
        renderer.m_functions->glGetVertexAttribiv(row.attribute, name, &number);
        return number;
    };
    EXPECT_EQ(value(GL_VERTEX_ATTRIB_ARRAY_ENABLED), row.isEnabled);
    if (!row.isEnabled)
        return;
    EXPECT_EQ(value(GL_VERTEX_ATTRIB_ARRAY_SIZE), 3);
    EXPECT_EQ(value(GL_VERTEX_ATTRIB_ARRAY_TYPE), GL_FLOAT);
    EXPECT_EQ(value(GL_VERTEX_ATTRIB_ARRAY_NORMALIZED), GL_FALSE);
    EXPECT_EQ(value(GL_VERTEX_ATTRIB_ARRAY_STRIDE), row.stride);
    EXPECT_EQ(value(GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING), static_cast<GLint>(renderer.m_vbo.bufferId()));
    void* offset = nullptr;
    renderer.m_functions->glGetVertexAttribPointerv(row.attribute, GL_VERTEX_ATTRIB_ARRAY_POINTER, &offset);
    EXPECT_EQ(reinterpret_cast<quintptr>(offset), row.offset);
}

INSTANTIATE_TEST_SUITE_P(
    Pipelines, VertexLayoutTest,
    ::testing::Values(LayoutCase{"PlainVertex", RendererUnderTest::Pipeline::Plain, 0, 1, 24, 0},
                      LayoutCase{"PlainNormal", RendererUnderTest::Pipeline::Plain, 1, 1, 24, 12},
                      LayoutCase{"GeometryVertex", RendererUnderTest::Pipeline::GeometryShader, 0, 1, 0, 0},
                      LayoutCase{"GeometryNormal", RendererUnderTest::Pipeline::GeometryShader, 1, 0, 0, 0}),
    [](const auto& row) { return std::string(row.param.name); });

class UniformsTest : public RendererSetupTest, public ::testing::WithParamInterface<RendererUnderTest::Pipeline>
{
};

TEST_P(UniformsTest, AreFoundAndTheLightIsSet)
{
    RendererUnderTest renderer(true, GetParam());
    const auto& program = renderer.m_program;
    EXPECT_EQ(renderer.m_mvpLoc, program->uniformLocation("mvpMatrix"));
    EXPECT_EQ(renderer.m_normalMatrixLoc, program->uniformLocation("normalMatrix"));
    EXPECT_EQ(renderer.m_modelMatrixLoc, program->uniformLocation("modelMatrix"));
    EXPECT_EQ(renderer.m_lightPosLoc, program->uniformLocation("lightPos"));
    EXPECT_GE(renderer.m_mvpLoc, 0);
    EXPECT_GE(renderer.m_normalMatrixLoc, 0);
    EXPECT_GE(renderer.m_modelMatrixLoc, 0);
    EXPECT_GE(renderer.m_lightPosLoc, 0);

    std::array<GLfloat, 3> light = {};
    renderer.m_functions->glGetUniformfv(program->programId(), renderer.m_lightPosLoc, light.data());
    EXPECT_EQ(light, (std::array<GLfloat, 3>{-500, 0, 700}));
    GLint boundProgram = -1;
    renderer.m_functions->glGetIntegerv(GL_CURRENT_PROGRAM, &boundProgram);
    EXPECT_EQ(boundProgram, 0);
}

INSTANTIATE_TEST_SUITE_P(Pipelines, UniformsTest,
                         ::testing::Values(RendererUnderTest::Pipeline::Plain,
                                           RendererUnderTest::Pipeline::GeometryShader));

} // namespace
} // namespace zr::test
