#pragma once

#include "cache/thumbnail_database.h"

#include <QImage>
#include <QString>

namespace zr
{

// The cache's pictures, above its database: which PNG shows which source file, and whether it still does.

/// Where the picture of that source file is stored. Files of the same name in different folders share one.
QString picturePath(const QString& sourcePath);

/// Whether the cache has a picture of the source file's present state; the log says what is missing when not.
bool freshPicture(const ThumbnailDatabase& database, const QString& sourcePath);

/// Stores the picture as that of the source file's present state: the PNG, then its row. False when either fails.
bool store(ThumbnailDatabase& database, const QString& sourcePath, const QImage& picture);

/// The PNG that the default database has for the source file, fresh or not, whether it exists or not; empty when it has
/// none.
QString findPicture(const QString& sourcePath);

} // namespace zr
