// SPDX-License-Identifier: MIT
#pragma once

namespace zr::test
{

/// How many times as fast as the system's clock that of FasterClock runs.
constexpr int kClockSpeed = 8;

/// While the object lives, the monotonic clock of this program runs faster, and its sleeps and waits with a time limit
/// end as much sooner. Programs that are started with the library zr_faster_clock_preload preloaded live by such a
/// clock from their beginning to their end, so that their own time limits can be tested without waiting them out.
class FasterClock
{
public:
    FasterClock();
    ~FasterClock();
    FasterClock(const FasterClock&) = delete;
    FasterClock& operator=(const FasterClock&) = delete;
};

} // namespace zr::test
