// SPDX-License-Identifier: MIT
#pragma once

namespace zr::desktop
{

/// What the program does. Returns its exit status.
int run(int argc, char** argv);

} // namespace zr::desktop
