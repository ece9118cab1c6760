#pragma once

#include <QString>

namespace zr
{

/// What a look at a database file finds.
enum class DatabaseState {
    Usable,  ///< with the table of the cache, or without any that would be in its place
    Damaged, ///< or no database at all
    Foreign, ///< something else has the table's name, or the table has other columns
};

/// Looks at the file at `path`, which must be a regular one; one that somebody is about to change counts as usable.
/// Takes no lock, so it waits for nobody and nobody for it, and writes nothing.
DatabaseState inspectDatabase(const QString& path);

} // namespace zr
