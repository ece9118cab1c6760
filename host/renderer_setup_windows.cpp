// SPDX-License-Identifier: MIT
#include "host/renderer_setup.h"

#include "host/qt_platform.h"
#include "request/qt_bootstrap.h"

namespace zr
{

// The server draws, always with OpenGL.
void setUpRenderer(const Options&)
{
    chooseQtPlatform();
}

void startQtForReader()
{
    startQt();
}

} // namespace zr
