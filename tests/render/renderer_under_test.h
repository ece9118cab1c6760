// SPDX-License-Identifier: MIT
#pragma once

#include "render/offscreen_renderer.h"
#include "tests/render/sample_meshes.h"
#include "tests/support/data_folder_fixture.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLShaderProgram>

namespace zr::test
{

/// The product's renderer with its members public, and with the choices that the product never makes.
class RendererUnderTest : public OffscreenRenderer
{
public:
    using OffscreenRenderer::Pipeline;

    explicit RendererUnderTest(bool perspective = true) : OffscreenRenderer(perspective) {}
    RendererUnderTest(bool perspective, Pipeline pipeline, const ShaderTexts& texts = builtInShaderTexts())
        : OffscreenRenderer(perspective, pipeline, texts)
    {
    }

    using OffscreenRenderer::bindProgram;
    using OffscreenRenderer::probeGlsl;
    using OffscreenRenderer::renderFormat;
    using OffscreenRenderer::requireFunctions;

    using OffscreenRenderer::m_context;
    using OffscreenRenderer::m_fbo;
    using OffscreenRenderer::m_functions;
    using OffscreenRenderer::m_glsl;
    using OffscreenRenderer::m_lightPosLoc;
    using OffscreenRenderer::m_model;
    using OffscreenRenderer::m_modelMatrixLoc;
    using OffscreenRenderer::m_mvpLoc;
    using OffscreenRenderer::m_normalMatrixLoc;
    using OffscreenRenderer::m_perspective;
    using OffscreenRenderer::m_program;
    using OffscreenRenderer::m_projection;
    using OffscreenRenderer::m_rotation;
    using OffscreenRenderer::m_size;
    using OffscreenRenderer::m_surface;
    using OffscreenRenderer::m_valid;
    using OffscreenRenderer::m_vao;
    using OffscreenRenderer::m_vbo;
    using OffscreenRenderer::m_view;

    using OffscreenRenderer::render;
    QImage render(const SampleMesh& mesh) { return render(mesh.chunks(), mesh.min(), mesh.max()); }

    bool isCurrent() const { return m_context && QOpenGLContext::currentContext() == m_context.get(); }
};

/// A test that starts with an empty log.
class RendererTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        restartLog();
    }
};

} // namespace zr::test
