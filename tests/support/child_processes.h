// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <set>

namespace zr::test
{

/// The processes that the process `parent` has started and that still run, without those that the system starts for it.
std::set<qint64> childrenOf(qint64 parent);

/// Whether there is such a process.
bool isRunning(qint64 process);

/// Ends the process at once, whatever it does.
void killProcess(qint64 process);

} // namespace zr::test
