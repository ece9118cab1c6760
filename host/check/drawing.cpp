// SPDX-License-Identifier: MIT
#include "host/check/drawing.h"

#include "host/qt_platform.h"
#include "request/qt_bootstrap.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace zr
{
namespace
{

const QString kQt = QStringLiteral("Qt");
const QString kOpenGl = QStringLiteral("OpenGL");

// The first version with shaders.
constexpr int kFirstUsableMajorVersion = 2;

// With the command that fixes it.
Finding failureOf(const QStringList& settings)
{
    QStringList names;
    for (const QString& setting : settings)
        names += setting.section(QLatin1Char('='), 0, 0);
    return {
        Verdict::Fail, kQt,
        QStringLiteral("does not start with %1, and went without; type 'unset %2', and take it out of where it is set")
            .arg(settings.join(QLatin1Char(' ')), names.join(QLatin1Char(' ')))};
}

QString glText(QOpenGLFunctions* functions, GLenum name)
{
    return QString::fromLatin1(reinterpret_cast<const char*>(functions->glGetString(name)));
}

Finding noContext()
{
    if (isPlatformOfUser() && QGuiApplication::platformName() != QLatin1String("xcb"))
        return {Verdict::Fail, kOpenGl,
                QStringLiteral("the platform '%1' has none here, so models have no thumbnails: unset QT_QPA_PLATFORM, "
                               "which asks for it")
                    .arg(QGuiApplication::platformName())};
    if (openGlLacksDisplay())
        return {Verdict::Note, kOpenGl, QStringLiteral("there is no display for it; models are drawn without it")};
    return {Verdict::Fail, kOpenGl,
            QStringLiteral("there is no OpenGL, so models have no thumbnails; a driver of the graphics "
                           "card's maker brings it")};
}

} // namespace

Findings checkQt()
{
    startQt();
    Findings findings = {
        {Verdict::Ok, kQt,
         QStringLiteral("%1 starts, platform %2").arg(QLatin1String(qVersion()), QGuiApplication::platformName())}};
    const QStringList unused = unusedPlatformSettings();
    if (!unused.isEmpty())
        findings += failureOf(unused);
    return findings;
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
        return {{Verdict::Ok, kOpenGl, text}};
    return {{Verdict::Fail, kOpenGl,
             QStringLiteral("too old for models, which need %1.0: %2; a newer driver of the graphics card's maker may "
                            "bring it")
                 .arg(QString::number(kFirstUsableMajorVersion), text)}};
}

} // namespace zr
