// SPDX-License-Identifier: MIT
// The functions at the end have the names of the system's library. This program's own are found first, also by Qt,
// SQLite and the C++ library.

#include "tests/support/faster_clock.h"

#include <atomic>
#include <cstdint>
#include <ctime>

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

namespace zr::test
{
namespace
{

constexpr std::int64_t kSecond = 1000000000; // in nanoseconds

std::atomic<bool> isFaster{false};
std::atomic<std::int64_t> begun{0}; // in the system's time
std::atomic<std::int64_t> ahead{0}; // before that, by earlier objects

template <typename Function>
Function* systemsOwn(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int systemsClock(clockid_t clock, timespec* time)
{
    static auto* const function = systemsOwn<int(clockid_t, timespec*)>("clock_gettime");
    return function(clock, time);
}

std::int64_t nanoseconds(const timespec& time)
{
    return time.tv_sec * kSecond + time.tv_nsec;
}

timespec timeOf(std::int64_t time)
{
    return {time / kSecond, time % kSecond};
}

std::int64_t systemsTime()
{
    timespec time{};
    systemsClock(CLOCK_MONOTONIC, &time);
    return nanoseconds(time);
}

std::int64_t faster(std::int64_t systems)
{
    return systems + ahead + (isFaster ? (systems - begun) * (kClockSpeed - 1) : 0);
}

// The inverse of faster(), for a time to come.
std::int64_t systems(std::int64_t time)
{
    const std::int64_t now = systemsTime();
    return now + (time - faster(now)) / (isFaster ? kClockSpeed : 1);
}

} // namespace

FasterClock::FasterClock()
{
    begun = systemsTime();
    isFaster = true;
}

// What the clock has gained stays, since it must not run back.
FasterClock::~FasterClock()
{
    ahead += (systemsTime() - begun) * (kClockSpeed - 1);
    isFaster = false;
}

} // namespace zr::test

// The system's headers name the parameters in their own way.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const int result = zr::test::systemsClock(clock, time);
    if (result == 0 && clock == CLOCK_MONOTONIC)
        *time = zr::test::timeOf(zr::test::faster(zr::test::nanoseconds(*time)));
    return result;
}

int usleep(useconds_t microseconds)
{
    static auto* const function = zr::test::systemsOwn<int(useconds_t)>("usleep");
    return function(zr::test::isFaster ? microseconds / zr::test::kClockSpeed : microseconds);
}

int pthread_cond_clockwait(pthread_cond_t* condition, pthread_mutex_t* mutex, clockid_t clock, const timespec* limit)
{
    static auto* const function =
        zr::test::systemsOwn<int(pthread_cond_t*, pthread_mutex_t*, clockid_t, const timespec*)>(
            "pthread_cond_clockwait");
    const timespec systemsLimit = zr::test::timeOf(zr::test::systems(zr::test::nanoseconds(*limit)));
    return function(condition, mutex, clock, clock == CLOCK_MONOTONIC ? &systemsLimit : limit);
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
