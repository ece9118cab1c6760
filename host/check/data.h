// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether the data folder takes the cache and the log, or can be made.
Findings checkDataFolder();

/// Why the file `path` of the data folder cannot be written, and what to do; empty when it can, or when it does not
/// exist yet. Never blocks, whatever is in the file's place.
QString fileFault(const QString& path);

} // namespace zr
