// SPDX-License-Identifier: MIT
#pragma once

#include "cache/thumbnail_database.h"

#include <QImage>
#include <QString>

namespace zr
{

// The cache's pictures, on top of its database: which PNG shows which source file, and whether it is up to date.

/// The path of the source file's picture. Files of the same name in different folders share one.
QString picturePath(const QString& sourcePath);

/// Whether the cache has an up-to-date picture of the source file; if not, the log says what is missing.
bool freshPicture(const ThumbnailDatabase& database, const QString& sourcePath);

/// The same for the default database, without a line in the log; false when there is no database.
bool hasFreshPicture(const QString& sourcePath);

/// Stores the picture as the source file's current one: the PNG, then its row. False when either fails.
bool store(ThumbnailDatabase& database, const QString& sourcePath, const QImage& picture);

/// The path of the PNG that the default database has recorded for the source file, which may be stale or missing; empty
/// when none is recorded.
QString findPicture(const QString& sourcePath);

} // namespace zr
