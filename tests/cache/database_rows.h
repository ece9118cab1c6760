// SPDX-License-Identifier: MIT
#pragma once

#include "cache/thumbnail_database.h"

#include <QString>
#include <QStringList>

namespace zr::test
{

/// A row for the source file, as the tests write and expect it.
ThumbnailRecord recordOf(const QString& source);

/// What the statement finds in the default database: a text per row, its columns joined by "|".
QStringList results(const char* statement);

} // namespace zr::test
