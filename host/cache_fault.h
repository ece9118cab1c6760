// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

/// Why the cache cannot take a picture of the source file at `path` and what to do about it, one line for the user;
/// empty when no fault is found. Looks at the current state only: never waits, and changes nothing.
QString cacheFault(const QString& path);

// Parts of it, with the same kind of answer.

/// What is in the place of the folder; one that is missing is no fault.
QString misplacedFolderFault(const QString& folder);

/// Why the database at `path` cannot be used; one that is missing can be made, unless its folder takes no files.
QString databaseFault(const QString& path);

/// Whether the disk of the data folder is full.
QString spaceFault();

} // namespace zr
