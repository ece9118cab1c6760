// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether the cache database can be read and written, and is one of ours. Comes after checkQt(), which finds the
/// driver's plug-in.
Findings checkDatabase();

} // namespace zr
