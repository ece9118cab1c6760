// SPDX-License-Identifier: MIT
#pragma once

#include "shell/registry_script.h"

#include <windows.h>

namespace zr
{

/// Writes all keys and values in the script's order. Stops at the first failure, undoes the script as
/// unregisterScript() does, and returns that failure.
HRESULT registerScript(const std::vector<RegistryBranch>& script);

/// Removes what the script writes: its values, and its keys as their Removal says. What is not there counts as removed.
/// Goes on after a failure and returns the first one.
HRESULT unregisterScript(const std::vector<RegistryBranch>& script);

} // namespace zr
