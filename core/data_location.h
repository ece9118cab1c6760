// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

/// The per-user data folder, without a trailing "/". It is computed afresh at every call, and not created:
/// only the thumbnail job creates folders.
QString dataFolder();

/// The cache database's default file inside dataFolder().
QString defaultDatabasePath();

/// The log's default file inside dataFolder().
QString defaultLogPath();

/// The folder of the cached PNG files inside dataFolder(), with a trailing "/".
QString thumbnailImageFolder();

} // namespace zr
