#pragma once

#include "shell/registry_script.h"

#include <windows.h>

namespace zr
{

/// Writes all keys and values in the script's order. The first failure ends it, undoes what the script stands for
/// as unregisterScript() does, and is returned.
HRESULT registerScript(const std::vector<RegistryBranch>& script);

/// Removes what the script writes: its values, and its keys as their Removal says. What is not there counts as removed.
/// Goes on after a failure and returns the first one.
HRESULT unregisterScript(const std::vector<RegistryBranch>& script);

} // namespace zr
