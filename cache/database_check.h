// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QSqlDatabase;

namespace zr
{

/// The state of a database file.
enum class DatabaseState {
    Usable,  ///< with the cache's table, or without any table of that name
    Damaged, ///< or not a database at all
    Foreign, ///< something else has the table's name, or the table has other columns
};

/// Inspects the file at `path`, which must be a regular file; one that another process is changing counts as usable.
/// Takes no lock, so neither side waits for the other, and writes nothing.
DatabaseState inspectDatabase(const QString& path);

/// Whether what is called as the cache's table in the open database has that table's columns.
bool hasTableOfTheCache(const QSqlDatabase& database);

} // namespace zr
