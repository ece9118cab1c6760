// SPDX-License-Identifier: MIT
#include "host/renderer_setup.h"

#include "host/qt_platform.h"
#include "render/renderer_choice.h"
#include "render/software_renderer.h"
#include "request/qt_bootstrap.h"

#include <QCoreApplication>

namespace zr
{
namespace
{

bool needsPlatform = true;

// Who names a platform has chosen OpenGL with it.
bool isPlatformNamed()
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

bool mayHaveDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// What the user named may not work, or have no display.
bool foundNoDisplay()
{
    return openGlLacksDisplay() && !isPlatformOfUser();
}

// Qt's plug-ins for databases need one. Never destroyed, as the one of a server.
void makePlainApplication()
{
    static int argc = 1;
    static char name[] = "zrthumb";
    static char* argv[] = {name, nullptr};
    static auto* const application = new QCoreApplication(argc, argv);
    Q_UNUSED(application)
}

} // namespace

void setUpRenderer(const Options& options)
{
    using Renderer = Options::Renderer;
    const bool isSoftware = options.renderer == Renderer::Software ||
                            (options.renderer == Renderer::Auto && !mayHaveDisplay() && !isPlatformNamed());
    if (isSoftware)
        drawInSoftware({});
    else if (options.renderer == Renderer::Auto)
        drawInSoftware({}, foundNoDisplay);

    // The checks tell about the platform, and a sheet has texts, whose fonts come with it.
    needsPlatform = !isSoftware || !options.sheet.isEmpty() || options.action == Options::Action::RunChecks;
    if (needsPlatform)
        chooseQtPlatform();
    else if (options.dataFolderUse == DataFolderUse::Usual)
        makePlainApplication();
}

void startQtForReader()
{
    if (needsPlatform)
        startQt();
}

} // namespace zr
