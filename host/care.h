// SPDX-License-Identifier: MIT
#pragma once

#include "host/options.h"

namespace zr
{

/// Removes from the cache what `action`, PruneCache or ClearCache, is about, and tells on stdout what it has removed
/// and on stderr what it could not do. Returns the program's exit status. To be called without an application object.
int careForCache(Options::Action action);

} // namespace zr
