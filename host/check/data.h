#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether the data folder takes the cache and the log, or can be made.
Findings checkDataFolder();

/// What keeps the file `path` of the data folder from being written, and what to do; empty when nothing does, or when
/// there is none yet. Waits for nobody, whatever has taken the place of the file.
QString fileFault(const QString& path);

} // namespace zr
