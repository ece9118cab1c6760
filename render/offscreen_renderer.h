// SPDX-License-Identifier: MIT
#pragma once

#include "render/mesh_renderer.h"
#include "render/shader_source.h"
#include "render/shader_texts.h"

#include <QImage>
#include <QMatrix4x4>
#include <QOpenGLBuffer>
#include <QOpenGLFunctions>
#include <QOpenGLShader>
#include <QOpenGLVertexArrayObject>
#include <QSize>
#include <QSurfaceFormat>

#include <memory>

class QOffscreenSurface;
class QOpenGLContext;
class QOpenGLFramebufferObject;
class QOpenGLShaderProgram;

namespace zr
{

/// Draws with OpenGL, without a window.
///
/// The constructor never fails outwardly: what goes wrong with OpenGL is logged, and render() then gives a null image.
/// A renderer is used by the thread that made it. Its OpenGL context stays current on that thread after construction
/// and render() relies on that: of several renderers of one thread only the youngest draws.
///
/// The base is never initialised, all calls go through m_functions; it is there for what Qt's helpers expect of a user
/// of OpenGL.
class OffscreenRenderer : public MeshRenderer, public QOpenGLFunctions
{
public:
    /// Width and height of the picture.
    static constexpr int kPictureSidePx = 400;

    /// `perspective`: view from 30 degrees above, turned by 41.5 degrees; otherwise orthographic along +Y.
    explicit OffscreenRenderer(bool perspective);
    ~OffscreenRenderer() override;

    /// Whether chunks hold positions only.
    bool usesGeometryShader() const { return m_useGeometryShader; }

    ChunkLayout chunkLayout() const override
    {
        return m_useGeometryShader ? ChunkLayout::Positions : ChunkLayout::PositionsAndNormals;
    }

    bool hasContext() const override { return true; }

    /// The background is white.
    QImage render(const TriangleChunks& chunks, const float* min, const float* max) override;

protected:
    enum class Pipeline { Plain, GeometryShader };

    /// For pipelines and shader texts other than those of the product.
    OffscreenRenderer(bool perspective, Pipeline pipeline, const ShaderTexts& texts);

    // The steps of construction, in this order. Each throws an error key when it fails.
    void createContext();
    void setupShaders(const ShaderTexts& texts);
    void setupCamera(int width, int height, bool perspective);

    // Steps of createContext().
    void createRenderContext();
    void probeGlsl();
    static QSurfaceFormat renderFormat(const GlslInfo& glsl);
    static QOpenGLFunctions* requireFunctions(QOpenGLFunctions* functions);

    // Steps of setupShaders().
    void bindProgram();

    QString prepareShaderSource(const char* text, bool isVertex) const;

    bool m_perspective;
    bool m_valid = true;
    GlslInfo m_glsl;
    std::unique_ptr<QOpenGLContext> m_context;
    std::unique_ptr<QOffscreenSurface> m_surface;
    QOpenGLFunctions* m_functions = nullptr;
    QOpenGLVertexArrayObject m_vao;
    QOpenGLBuffer m_vbo;
    std::unique_ptr<QOpenGLFramebufferObject> m_fbo;
    std::unique_ptr<QOpenGLShaderProgram> m_program;
    QMatrix4x4 m_projection;
    QMatrix4x4 m_rotation;
    QMatrix4x4 m_view;
    QMatrix4x4 m_model;
    int m_mvpLoc = -1;
    int m_normalMatrixLoc = -1;
    int m_modelMatrixLoc = -1;
    int m_lightPosLoc = -1;
    bool m_useGeometryShader;
    QSize m_size;

private:
    static constexpr int kFloatsPerVector = 3;

    bool canCallGl() const;
    void destroyContext();
    void requireStep(bool isDone, int lineNumber, const char* errorKey) const;
    bool addShader(QOpenGLShader::ShaderType type, const QString& source);
    void addGeometryPipelineShaders(const ShaderTexts& texts);
    void addPlainPipelineShaders(const ShaderTexts& texts);
    void setVertexLayout();
    void draw(const TriangleChunks& chunks);
    void drawChunk(const QVector<float>& chunk);
};

} // namespace zr
