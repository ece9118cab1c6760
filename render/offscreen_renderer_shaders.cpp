// SPDX-License-Identifier: MIT
// OffscreenRenderer's second step: the shader program, its uniforms and the layout of a vertex.

#include "render/offscreen_renderer.h"

#include "core/log_contract.h"
#include "core/log_file.h"
#include "render/camera.h"

#include <QOpenGLShaderProgram>

namespace zr
{
namespace
{

constexpr GLuint kVertexAttribute = 0;
constexpr GLuint kNormalAttribute = 1;

} // namespace

QString OffscreenRenderer::prepareShaderSource(const char* text, bool isVertex) const
{
    return zr::prepareShaderSource(m_glsl, text, isVertex);
}

/// Without a render context nothing may be compiled, not even when an earlier renderer's context is current.
bool OffscreenRenderer::addShader(QOpenGLShader::ShaderType type, const QString& source)
{
    return canCallGl() && m_program->addCacheableShaderFromSourceCode(type, source);
}

/// Logs the program's log under `lineNumber` and throws `errorKey` under the next one when the step has failed.
void OffscreenRenderer::requireStep(bool isDone, int lineNumber, const char* errorKey) const
{
    if (isDone)
        return;
    logLine(lineNumber, m_program->log());
    throwKey(lineNumber + 1, errorKey);
}

void OffscreenRenderer::addGeometryPipelineShaders(const ShaderTexts& texts)
{
    if (!addShader(QOpenGLShader::Vertex, prepareShaderSource(texts.geometryVertex, true))) {
        logLine(line::kGeometryVertexRetry, m_program->log());
        QString source = prepareShaderSource(texts.geometryVertex, true);
        source.remove(QStringLiteral("vec4 gl_Position;"));
        if (!addShader(QOpenGLShader::Vertex, source)) {
            logLine(line::kGeometryVertexFailed, m_program->log());
            throw QString::fromLatin1(key::kVertexShader);
        }
    }
    requireStep(addShader(QOpenGLShader::Geometry, prepareShaderSource(texts.geometry, true)), line::kGeometryFailed,
                key::kGeometryShader);
    requireStep(addShader(QOpenGLShader::Fragment, prepareShaderSource(texts.fragment, false)),
                line::kGeometryFragmentFailed, key::kFragmentShader);
}

void OffscreenRenderer::addPlainPipelineShaders(const ShaderTexts& texts)
{
    requireStep(addShader(QOpenGLShader::Vertex, prepareShaderSource(texts.plainVertex, true)),
                line::kPlainVertexFailed, key::kVertexShader);
    requireStep(addShader(QOpenGLShader::Fragment, prepareShaderSource(texts.fragment, false)),
                line::kPlainFragmentFailed, key::kFragmentShader);
}

void OffscreenRenderer::setupShaders(const ShaderTexts& texts)
{
    m_program = std::make_unique<QOpenGLShaderProgram>();
    if (m_useGeometryShader)
        addGeometryPipelineShaders(texts);
    else
        addPlainPipelineShaders(texts);

    m_program->bindAttributeLocation("vertex", kVertexAttribute);
    if (!m_useGeometryShader)
        m_program->bindAttributeLocation("normal", kNormalAttribute);
    requireStep(m_program->link(), line::kLinkFailed, key::kShaderLink);
    bindProgram();

    m_mvpLoc = m_program->uniformLocation("mvpMatrix");
    m_normalMatrixLoc = m_program->uniformLocation("normalMatrix");
    m_lightPosLoc = m_program->uniformLocation("lightPos");
    m_modelMatrixLoc = m_program->uniformLocation("modelMatrix");

    setVertexLayout();
    m_program->setUniformValue(m_lightPosLoc, kLightPosition);
    m_program->release();
}

void OffscreenRenderer::bindProgram()
{
    requireStep(m_program->bind(), line::kBindFailed, key::kShaderBind);
}

/// The vertex array keeps the layout together with the buffer, so that each draw only fills the buffer.
void OffscreenRenderer::setVertexLayout()
{
    m_vao.create();
    const QOpenGLVertexArrayObject::Binder binder(&m_vao);
    m_vbo.create();
    m_vbo.bind();
    constexpr GLsizei kVectorBytes = kFloatsPerVector * static_cast<GLsizei>(sizeof(float));
    const GLsizei stride = m_useGeometryShader ? 0 : 2 * kVectorBytes;
    m_functions->glEnableVertexAttribArray(kVertexAttribute);
    m_functions->glVertexAttribPointer(kVertexAttribute, kFloatsPerVector, GL_FLOAT, GL_FALSE, stride, nullptr);
    if (!m_useGeometryShader) {
        m_functions->glEnableVertexAttribArray(kNormalAttribute);
        // An offset into the bound buffer, which OpenGL takes as a pointer.
        m_functions->glVertexAttribPointer(kNormalAttribute, kFloatsPerVector, GL_FLOAT, GL_FALSE, stride,
                                           reinterpret_cast<const void*>(quintptr{kVectorBytes}));
    }
    m_vbo.release();
}

} // namespace zr
