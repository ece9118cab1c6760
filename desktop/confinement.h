// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/options.h"

#include <QByteArray>
#include <QByteArrayList>

namespace zr::desktop
{

/// Gives up what the process does not need any more, for good: what it may still do is compute, and read and write the
/// files that are open. Opening a file, making a socket, starting a program or a process, and changing names end it.
/// All of that is needed before: libraries that open files or make threads when they are first used have to be used
/// once.
///
/// After `limits.seconds` of processor time it ends with status 1 and `timeoutText` on stderr.
///
/// Returns what this system refuses, a few words each. The process goes on without it: it is then as well protected as
/// any other program.
QByteArrayList confine(const Limits& limits, const QByteArray& timeoutText);

} // namespace zr::desktop
