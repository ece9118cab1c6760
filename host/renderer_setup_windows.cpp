// SPDX-License-Identifier: MIT
#include "host/renderer_setup.h"

#include "host/qt_platform.h"

namespace zr
{

// The server draws, always with OpenGL.
void setUpRenderer(const Options&)
{
    chooseQtPlatform();
}

} // namespace zr
