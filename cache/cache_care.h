// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

namespace zr
{

/// What has been removed from the cache, and what has kept the rest from being removed.
struct CareResult {
    qint64 rows = 0;
    qint64 pictures = 0;
    qint64 bytes = 0; ///< of the pictures

    qint64 keptPictures = 0; ///< which the system did not remove
    QString firstKept;       ///< path of one of them
    QString keptReason;      ///< of that one, in the system's words

    QString databaseError;       ///< in the words of SQLite; nothing was removed after it
    bool isDatabaseBusy = false; ///< the error is that another program has the database locked
    bool isFolderClosed = false; ///< the folder of the pictures cannot be listed
    bool isInterrupted = false;
};

/// What happens meanwhile. Both may be empty.
struct CareCallbacks {
    /// Whether to end early; asked often.
    std::function<bool()> isCancelled;
    /// Called before each wait of some seconds for pictures that may be about to get their rows.
    std::function<void()> onWait;
};

// Both need an application object, may run while other processes use the cache, create nothing, and remove nothing but
// rows of the default database and PNGs that lie in thumbnailImageFolder() itself.

/// Removes the rows of source files that are gone, and PNGs that no row names, among them temporary ones that killed
/// processes have left.
CareResult pruneCache(const CareCallbacks& callbacks);

/// Removes all rows, and PNGs that no row names.
CareResult clearCache(const CareCallbacks& callbacks);

} // namespace zr
