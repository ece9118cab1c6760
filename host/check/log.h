// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether the log can be written, and its last lines.
Findings checkLog();

} // namespace zr
