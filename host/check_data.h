#pragma once

#include "host/check.h"

namespace zr
{

/// Whether the data folder takes the cache and the log, or can be made.
Findings checkDataFolder();

/// Whether the cache database can be read. Comes after checkQt(), which finds the driver's plug-in.
Findings checkDatabase();

} // namespace zr
