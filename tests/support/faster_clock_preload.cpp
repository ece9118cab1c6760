// SPDX-License-Identifier: MIT
// For programs that are started by a test.

#include "tests/support/faster_clock.h"

namespace
{

const zr::test::FasterClock fasterClock;

} // namespace
