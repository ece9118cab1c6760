// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether the file browser finds the program that makes the thumbnails: its registration, its files, and who makes the
/// thumbnails of each suffix. On Windows that is the server, on Linux zrthumbnailer.
Findings checkInstallation();

} // namespace zr
