// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

namespace zr
{

/// Calls `onName` for each name in the file `path`, or stdin when that is "-". Names end with `separator`, a line feed
/// or a zero byte, and are in the encoding of the system's file names; empty ones are left out. Returns why the names
/// cannot be read, one line for the user; empty when all were. What was read until then has been handed over.
QString readNames(const QString& path, char separator, const std::function<void(const QString& name)>& onName);

} // namespace zr
