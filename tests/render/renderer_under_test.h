#pragma once

#include "render/offscreen_renderer.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLShaderProgram>

namespace zr::test
{

/// The product's renderer with its inside laid open, and with the choices that the product never makes.
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

    bool isCurrent() const { return m_context && QOpenGLContext::currentContext() == m_context.get(); }
};

} // namespace zr::test
