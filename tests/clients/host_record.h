// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace zr::test
{

/// One observable property of a process or of one of its threads.
struct HostFact {
    std::string name;
    std::string value;
};

using HostRecord = std::vector<HostFact>;

/// Everything observable that a guest could change in this process and on this thread: how windows are scaled, the
/// current folder, error modes, floating-point control, locale and code pages, environment, priorities, timer
/// resolution, handlers of exceptions and signals, the COM apartment, input, and the current OpenGL context.
HostRecord recordHost();

/// A line "NAME: BEFORE -> AFTER" for each property that differs.
std::vector<std::string> changes(const HostRecord& before, const HostRecord& after);

/// Class names of the top-level windows of this process.
std::vector<std::string> topLevelWindows();

/// Class names of the windows of this process that get no broadcasts.
std::vector<std::string> messageOnlyWindows();

} // namespace zr::test
