// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

/// Why the cache cannot take a picture of the source file at `path` and what to do about it, one line for the user;
/// empty when no fault is found. Looks at the current state only: never waits, and changes nothing.
QString cacheFault(const QString& path);

} // namespace zr
