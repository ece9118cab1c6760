// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

// What the system makes of the paths in the cache's rows.

/// Whether the system says that there is no such file. False for one that cannot be looked at: in a folder without
/// permission, on a share or drive that is away.
bool isGone(const QString& path);

/// The name of a file in a form that is equal for names that the system takes for the same.
QString comparableName(const QString& name);

} // namespace zr
