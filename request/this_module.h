// SPDX-License-Identifier: MIT
#pragma once

struct HINSTANCE__;

namespace zr
{

/// The module that holds this code, whichever program loaded it: an HMODULE. Windows only.
HINSTANCE__* thisModule();

} // namespace zr
