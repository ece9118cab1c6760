// SPDX-License-Identifier: MIT
#include "render/offscreen_renderer.h"

#include "core/log_contract.h"
#include "core/log_file.h"
#include "render/camera.h"
#include "render/renderer_failures.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLShaderProgram>

namespace zr
{

OffscreenRenderer::OffscreenRenderer(bool perspective)
    : OffscreenRenderer(perspective, Pipeline::Plain, builtInShaderTexts())
{
}

OffscreenRenderer::OffscreenRenderer(bool perspective, Pipeline pipeline, const ShaderTexts& texts)
    : m_perspective(perspective), m_useGeometryShader(pipeline == Pipeline::GeometryShader)
{
    try {
        createContext();
        setupShaders(texts);
        setupCamera(kPictureSidePx, kPictureSidePx, m_perspective);
    } catch (const QString& key) {
        logLine(kRendererNotMade, key);
        m_valid = false;
    }
}

OffscreenRenderer::~OffscreenRenderer()
{
    // What was never bound has nothing to release, and a program that no context has initialised cannot be released.
    const bool isContextCurrent = canCallGl();
    if (m_fbo && isContextCurrent)
        m_fbo->release();
    m_fbo.reset();
    if (m_program && m_program->isLinked() && isContextCurrent)
        m_program->release();
    m_program.reset();
    destroyContext();
}

/// A render context that never became current leaves m_functions with the table of the probe's context, which is gone.
/// Such a context has no surface.
bool OffscreenRenderer::canCallGl() const
{
    return m_functions && m_context->surface() && QOpenGLContext::currentContext();
}

void OffscreenRenderer::setupCamera(int width, int height, bool perspective)
{
    m_perspective = perspective;
    m_size = QSize(width, height);
    const CameraMatrices camera = cameraMatrices(m_size, m_perspective);
    m_projection = camera.projection;
    m_rotation = camera.rotation;
    m_view = camera.view;
    if (m_functions) {
        m_functions->glViewport(0, 0, width, height);
        m_functions->glClearColor(1.0F, 1.0F, 1.0F, 0.0F);
    }
}

QImage OffscreenRenderer::render(const TriangleChunks& chunks, const float* min, const float* max)
{
    m_model = unitBoxMatrix(min, max);
    try {
        requireTriangles(chunks);
        draw(chunks);
        return m_valid && m_fbo ? m_fbo->toImage() : QImage();
    } catch (const QString& key) {
        logLine(line::kRenderFailed, key);
        return {};
    }
}

void OffscreenRenderer::draw(const TriangleChunks& chunks)
{
    if (!canCallGl())
        return;
    if (m_fbo)
        m_fbo->release();
    m_fbo.reset();
    m_fbo = std::make_unique<QOpenGLFramebufferObject>(m_size, QOpenGLFramebufferObject::CombinedDepthStencil,
                                                       GL_TEXTURE_2D, 0);
    m_fbo->bind();

    m_functions->glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    m_functions->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    m_functions->glEnable(GL_DEPTH_TEST);
    m_functions->glEnable(GL_CULL_FACE);

    const QOpenGLVertexArrayObject::Binder binder(&m_vao);
    m_program->bind();
    const CameraMatrices camera = {m_projection, m_rotation, m_view};
    m_program->setUniformValue(m_mvpLoc, camera.mvpMatrix());
    m_program->setUniformValue(m_normalMatrixLoc, camera.normalMatrix());
    m_program->setUniformValue(m_modelMatrixLoc, m_model);
    for (const QVector<float>* chunk : chunks)
        drawChunk(*chunk);
}

void OffscreenRenderer::drawChunk(const QVector<float>& chunk)
{
    // Among others this fails in a renderer whose context is no longer the current one.
    if (!m_vbo.bind()) {
        logLine(kBufferNotBound);
        throwKey(kBufferNotBound.number + 1, key::kBufferBind);
    }
    // No overflow: Qt's vectors hold less than 2 GiB.
    m_vbo.allocate(chunk.constData(), chunk.size() * static_cast<int>(sizeof(float)));
    const int floatsPerVertex = m_useGeometryShader ? kFloatsPerVector : 2 * kFloatsPerVector;
    m_functions->glDrawArrays(GL_TRIANGLES, 0, chunk.size() / floatsPerVertex);
    m_vbo.release();
}

} // namespace zr
