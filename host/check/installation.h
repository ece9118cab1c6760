// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether the file browser finds the server: its registration, its files, and the handlers of the suffixes. No
/// findings on Linux, where there is only the host.
Findings checkInstallation();

} // namespace zr
