// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether Qt starts here as the server starts it, and with what the user has set for it. Makes the process's
/// application object.
Findings checkQt();

/// Whether OpenGL provides a context that can draw models. Comes after checkQt().
Findings checkOpenGl();

} // namespace zr
