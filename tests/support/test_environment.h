#pragma once

namespace zr::test
{

/// Points the data folder at a temporary one that disappears with the process (not below Wine, where the profile's
/// own folder cannot be moved), and lets Qt run without a display.
void prepareTestEnvironment();

} // namespace zr::test
