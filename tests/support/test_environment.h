// SPDX-License-Identifier: MIT
#pragma once

namespace zr::test
{

/// Sets the data folder to a temporary one that is removed with the process (not under Wine, where the profile's own
/// folder cannot be moved), and lets Qt run without a display.
void prepareTestEnvironment();

} // namespace zr::test
