#include "host/check_drawing.h"

#include "host/failure_reason.h"
#include "host/platform.h"
#include "shell/qt_bootstrap.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace zr
{
namespace
{

const QString kOpenGl = QStringLiteral("OpenGL");

// The first version with shaders.
constexpr int kFirstUsableMajorVersion = 2;

QString glText(QOpenGLFunctions* functions, GLenum name)
{
    return QString::fromLatin1(reinterpret_cast<const char*>(functions->glGetString(name)));
}

Finding noContext()
{
    if (openGlLacksDisplay())
        return {false, kOpenGl, QLatin1String(kOpenGlNeedsDisplay)};
    return {false, kOpenGl,
            QStringLiteral("there is no OpenGL, so models have no thumbnails; a driver of the graphics "
                           "card's maker brings it")};
}

} // namespace

Findings checkQt()
{
    startQt();
    return {{true, QStringLiteral("Qt"),
             QStringLiteral("%1 starts, platform %2").arg(QLatin1String(qVersion()), QGuiApplication::platformName())}};
}

Findings checkOpenGl()
{
    QOpenGLContext context;
    QOffscreenSurface surface;
    surface.create();
    if (!context.create() || !context.makeCurrent(&surface))
        return {noContext()};
    auto* const functions = context.functions();
    const QString text = QStringLiteral("%1, %2").arg(glText(functions, GL_VERSION), glText(functions, GL_RENDERER));
    const bool isUsable = context.format().majorVersion() >= kFirstUsableMajorVersion;
    context.doneCurrent();
    if (isUsable)
        return {{true, kOpenGl, text}};
    return {{false, kOpenGl,
             QStringLiteral("too old for models, which need %1.0: %2").arg(kFirstUsableMajorVersion).arg(text)}};
}

} // namespace zr
