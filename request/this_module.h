#pragma once

struct HINSTANCE__;

namespace zr
{

/// The module that holds this code, whichever program loaded it: an HMODULE of Windows, where alone this exists.
HINSTANCE__* thisModule();

} // namespace zr
