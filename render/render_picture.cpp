// OffscreenRenderer's camera and what it does with a mesh: frame, draw, read back.

#include "render/offscreen_renderer.h"

#include "core/log_file.h"
#include "render/renderer_failures.h"

#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLShaderProgram>

namespace zr
{
namespace
{

constexpr int kLineRenderFailed = 190;

constexpr int kFloatsPerPosition = 3;
constexpr int kFloatsPerPositionAndNormal = 6;

/// Moves the bounding box's centre to the origin and makes its largest extent 1.
QMatrix4x4 unitBoxMatrix(const float* min, const float* max)
{
    const float dx = max[0] - min[0];
    const float dy = max[1] - min[1];
    const float dz = max[2] - min[2];
    const float largerOfYz = dz > dy ? dz : dy;
    const float largest = largerOfYz > dx ? largerOfYz : dx;

    QMatrix4x4 matrix;
    matrix.scale(static_cast<float>(1.0 / static_cast<double>(largest)));
    matrix.translate(-(min[0] + max[0]) * 0.5F, -(min[1] + max[1]) * 0.5F, -(min[2] + max[2]) * 0.5F);
    return matrix;
}

} // namespace

void OffscreenRenderer::setupCamera(int width, int height, bool perspective)
{
    m_perspective = perspective;
    m_size = QSize(width, height);
    m_projection.setToIdentity();
    m_rotation.setToIdentity();
    m_view.setToIdentity();
    m_view.translate(0.0F, 0.0F, -2.3F);

    // Tilt, roll and turn; the turns by zero degrees stay so that both cameras are given by the same three angles.
    if (m_perspective) {
        m_projection.perspective(45.0F, static_cast<float>(width) / static_cast<float>(height), 0.01F, 1000.0F);
        m_rotation.rotate(-60.0F, 1.0F, 0.0F, 0.0F);
        m_rotation.rotate(0.0F, 0.0F, 1.0F, 0.0F);
        m_rotation.rotate(41.5F, 0.0F, 0.0F, 1.0F);
    } else {
        const float halfWidth = static_cast<float>(width) * 0.5F;
        const float halfHeight = static_cast<float>(height) * 0.5F;
        m_projection.ortho(-halfWidth, halfWidth, -halfHeight, halfHeight, -100.0F, 1000.0F);
        m_projection.scale(200.0F, 200.0F, 200.0F);
        m_rotation.rotate(-90.0F, 1.0F, 0.0F, 0.0F);
        m_rotation.rotate(0.0F, 0.0F, 1.0F, 0.0F);
        m_rotation.rotate(0.0F, 0.0F, 0.0F, 1.0F);
    }

    if (m_functions) {
        m_functions->glViewport(0, 0, width, height);
        m_functions->glClearColor(1.0F, 1.0F, 1.0F, 0.0F);
    }
}

QImage OffscreenRenderer::render(const TriangleChunks& chunks, const float* min, const float* max)
{
    m_model = unitBoxMatrix(min, max);
    try {
        if (chunks.isEmpty()) {
            logLine(kNothingToDraw);
            throw QStringLiteral("renderListZero");
        }
        draw(chunks);
        return m_valid && m_fbo ? m_fbo->toImage() : QImage();
    } catch (const QString& key) {
        logLine(kLineRenderFailed, key);
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
    m_program->setUniformValue(m_mvpLoc, m_projection * m_view * m_rotation);
    m_program->setUniformValue(m_normalMatrixLoc, m_rotation.normalMatrix());
    m_program->setUniformValue(m_modelMatrixLoc, m_model);
    for (const QVector<float>* chunk : chunks)
        drawChunk(*chunk);
}

void OffscreenRenderer::drawChunk(const QVector<float>& chunk)
{
    // Among others this fails in a renderer whose context is no longer the current one.
    if (!m_vbo.bind()) {
        logLine(kBufferNotBound);
        throwKey(kBufferNotBound.number + 1, "vboBindErrInRender");
    }
    // No overflow: Qt's vectors hold less than 2 GiB.
    m_vbo.allocate(chunk.constData(), chunk.size() * static_cast<int>(sizeof(float)));
    const int floatsPerVertex = m_useGeometryShader ? kFloatsPerPosition : kFloatsPerPositionAndNormal;
    m_functions->glDrawArrays(GL_TRIANGLES, 0, chunk.size() / floatsPerVertex);
    m_vbo.release();
}

} // namespace zr
