// SPDX-License-Identifier: MIT
#include "host/renderer_setup.h"

#include "host/application.h"
#include "host/qt_platform.h"
#include "render/renderer_choice.h"
#include "render/software_renderer.h"
#include "request/qt_bootstrap.h"

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
        makePlainApplication(); // Qt's plug-ins for databases need one
}

void startQtForReader()
{
    if (needsPlatform)
        startQt();
}

} // namespace zr
