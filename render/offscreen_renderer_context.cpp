// SPDX-License-Identifier: MIT
// OffscreenRenderer's first step: the OpenGL context, its surface, and what their OpenGL can do.

#include "render/offscreen_renderer.h"

#include "core/log_contract.h"
#include "core/log_file.h"
#include "render/renderer_failures.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>

#include <mutex>

namespace zr
{
namespace
{

/// Held while contexts and surfaces are made or destroyed. Where Qt has no other offscreen surface it takes a hidden
/// window, and its platform plug-in for Windows keeps the window that is being made in one variable for all threads.
/// Never destroyed, and made at its first use: loading the DLL runs no code.
std::mutex& windowSystemMutex()
{
    static auto* const mutex = new std::mutex;
    return *mutex;
}

/// The first OpenGL version whose GLSL has "in" and "out", and which has core profiles.
constexpr int kFirstModernVersion = 0x30;

/// Without one, Qt crashes where it is asked for a context, and without a screen it ends the process where it is asked
/// for a surface. A host that made an application object without windows has none.
bool hasPlatform()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) && QGuiApplication::primaryScreen();
}

struct GlslVersionRow {
    int versionCode; ///< as GlslInfo::versionCode
    const char* glsl;
    bool compiled;
};

struct GlslVersionTable {
    GlslVersionRow rows[13] = {
        {0x20, "110", false}, {0x21, "120", false}, {0x30, "130", false}, {0x31, "140", false}, {0x32, "150", false},
        {0x33, "330", false}, {0x40, "400", false}, {0x41, "410", false}, {0x42, "420", false}, {0x43, "430", false},
        {0x44, "440", false}, {0x45, "450", false}, {0x46, "460", false},
    };
};

} // namespace

void OffscreenRenderer::createContext()
{
    const std::lock_guard<std::mutex> guard(windowSystemMutex());
    std::unique_ptr<QOpenGLContext> probeContext;
    if (hasPlatform()) {
        probeContext = std::make_unique<QOpenGLContext>();
        probeContext->create();
    }
    if (!probeContext || !probeContext->isValid()) {
        logLine(kContextNotValid);
        return;
    }
    auto probeSurface = std::make_unique<QOffscreenSurface>();
    probeSurface->create();
    if (!probeSurface->isValid()) {
        logLine(kSurfaceNotValid);
        return;
    }
    probeContext->makeCurrent(probeSurface.get());
    m_context = std::make_unique<QOpenGLContext>();
    m_surface = std::make_unique<QOffscreenSurface>();
    try {
        createRenderContext();
    } catch (const QString& cause) {
        // The probe stays for good: it may be current, and an OpenGL in this state is best not touched again.
        static_cast<void>(probeContext.release());
        static_cast<void>(probeSurface.release());
        logLine(line::kContextFailed, cause);
        throwKey(line::kContextFailedThrow, key::kContext);
    }
    probeContext.reset();
    probeSurface.reset();
}

/// Expects the probe's context to be current and leaves the render context current.
void OffscreenRenderer::createRenderContext()
{
    probeGlsl();
    // A step that fails here shows as a vertex shader that does not compile.
    m_context->setFormat(renderFormat(m_glsl));
    m_context->create();
    m_surface->create();
    m_context->makeCurrent(m_surface.get());
    m_functions = requireFunctions(m_context->functions());
    if (QOpenGLContext::currentContext())
        m_functions->initializeOpenGLFunctions();
}

void OffscreenRenderer::destroyContext()
{
    const std::lock_guard<std::mutex> guard(windowSystemMutex());
    if (m_surface)
        m_surface->destroy();
    m_surface.reset();
    // The buffer and the vertex array outlive the context: Qt detaches them when it is destroyed.
    m_context.reset();
}

QSurfaceFormat OffscreenRenderer::renderFormat(const GlslInfo& glsl)
{
    QSurfaceFormat format;
    format.setVersion(glsl.versionCode / 16, glsl.versionCode % 16);
    format.setProfile(glsl.modernSyntax ? QSurfaceFormat::CoreProfile : QSurfaceFormat::CompatibilityProfile);
    return format;
}

QOpenGLFunctions* OffscreenRenderer::requireFunctions(QOpenGLFunctions* functions)
{
    if (!functions)
        throwKey(line::kNoFunctions, key::kNoFunctions);
    return functions;
}

/// Finds the highest GLSL level of the current context that compiles a trivial vertex shader.
void OffscreenRenderer::probeGlsl()
{
    const QOpenGLContext* context = QOpenGLContext::currentContext();
    if (!context)
        throwKey(line::kProbeWithoutContext, key::kNoContext);
    const int contextCode = context->format().majorVersion() * 16 + context->format().minorVersion();
    m_glsl = {/*modernSyntax=*/false, /*gpuShader4=*/false, contextCode, /*glslVersion=*/{}};

    QOpenGLShader shader(QOpenGLShader::Vertex);
    GlslVersionTable table;
    for (auto row = std::rbegin(table.rows); row != std::rend(table.rows); ++row) {
        if (row->versionCode > contextCode)
            continue;
        const QString glsl = QString::fromLatin1(row->glsl);
        row->compiled = shader.compileSourceCode(QStringLiteral("#version %1\nvoid main(){}").arg(glsl));
        if (row->compiled) {
            m_glsl.modernSyntax = row->versionCode >= kFirstModernVersion;
            m_glsl.versionCode = row->versionCode;
            m_glsl.glslVersion = glsl;
            break;
        }
    }
    if (!m_glsl.modernSyntax && !m_glsl.glslVersion.isEmpty())
        m_glsl.gpuShader4 =
            shader.compileSourceCode(QStringLiteral("#version %1\n#extension GL_EXT_gpu_shader4:require\nvoid main(){}")
                                         .arg(m_glsl.glslVersion));
}

} // namespace zr
