// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

namespace zr
{

/// Writes the registry script of the DLL's resources, then registers the type library that is one of them.
/// Returns the first failure. Uses no Qt.
HRESULT registerServer();

/// Undoes registerServer(). Goes on after a failure and returns the first one; a missing registration is not a failure.
HRESULT unregisterServer();

} // namespace zr
