#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether the file browser finds the server: its registration, its files, and the handlers of the suffixes.
/// Nothing on Linux, where the host is all there is.
Findings checkInstallation();

} // namespace zr
