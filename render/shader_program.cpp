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

/// A step that cannot go on: the program's log is written with `number`, the " throw " line with the number after it.
struct ShaderFailure {
    int number;
    const char* key;
};

constexpr ShaderFailure kGeometryFailed = {line::kGeometryFailed, key::kGeometryShader};
constexpr ShaderFailure kGeometryFragmentFailed = {line::kGeometryFragmentFailed, key::kFragmentShader};
constexpr ShaderFailure kPlainVertexFailed = {line::kPlainVertexFailed, key::kVertexShader};
constexpr ShaderFailure kPlainFragmentFailed = {line::kPlainFragmentFailed, key::kFragmentShader};
constexpr ShaderFailure kLinkFailed = {line::kLinkFailed, key::kShaderLink};
constexpr ShaderFailure kBindFailed = {line::kBindFailed, key::kShaderBind};

constexpr GLuint kVertexAttribute = 0;
constexpr GLuint kNormalAttribute = 1;
constexpr int kFloatsPerVector = 3;
constexpr GLsizei kPlainStrideBytes = 2 * kFloatsPerVector * static_cast<GLsizei>(sizeof(float));
constexpr quintptr kNormalOffsetBytes = kFloatsPerVector * sizeof(float);

void require(bool isDone, const QOpenGLShaderProgram& program, const ShaderFailure& failure)
{
    if (isDone)
        return;
    logLine(failure.number, program.log());
    throwKey(failure.number + 1, failure.key);
}

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
    require(addShader(QOpenGLShader::Geometry, prepareShaderSource(texts.geometry, true)), *m_program, kGeometryFailed);
    require(addShader(QOpenGLShader::Fragment, prepareShaderSource(texts.fragment, false)), *m_program,
            kGeometryFragmentFailed);
}

void OffscreenRenderer::addPlainPipelineShaders(const ShaderTexts& texts)
{
    require(addShader(QOpenGLShader::Vertex, prepareShaderSource(texts.plainVertex, true)), *m_program,
            kPlainVertexFailed);
    require(addShader(QOpenGLShader::Fragment, prepareShaderSource(texts.fragment, false)), *m_program,
            kPlainFragmentFailed);
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
    require(m_program->link(), *m_program, kLinkFailed);
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
    require(m_program->bind(), *m_program, kBindFailed);
}

/// The vertex array keeps the layout together with the buffer, so that each draw only fills the buffer.
void OffscreenRenderer::setVertexLayout()
{
    m_vao.create();
    const QOpenGLVertexArrayObject::Binder binder(&m_vao);
    m_vbo.create();
    m_vbo.bind();
    if (m_useGeometryShader) {
        m_functions->glEnableVertexAttribArray(kVertexAttribute);
        m_functions->glVertexAttribPointer(kVertexAttribute, kFloatsPerVector, GL_FLOAT, GL_FALSE, 0, nullptr);
    } else {
        m_functions->glEnableVertexAttribArray(kVertexAttribute);
        m_functions->glEnableVertexAttribArray(kNormalAttribute);
        m_functions->glVertexAttribPointer(kVertexAttribute, kFloatsPerVector, GL_FLOAT, GL_FALSE, kPlainStrideBytes,
                                           nullptr);
        // An offset into the bound buffer, which OpenGL takes as a pointer.
        m_functions->glVertexAttribPointer(kNormalAttribute, kFloatsPerVector, GL_FLOAT, GL_FALSE, kPlainStrideBytes,
                                           reinterpret_cast<const void*>(kNormalOffsetBytes));
    }
    m_vbo.release();
}

} // namespace zr
