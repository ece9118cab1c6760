// SPDX-License-Identifier: MIT
#pragma once

namespace zr
{

/// The class by which COM finds the server, as the registry spells it: for code that talks to the server from outside.
constexpr char kServerClassId[] = "{E45A903D-53AE-4A14-906E-0260D13FF77F}";

} // namespace zr
