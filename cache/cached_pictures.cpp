// SPDX-License-Identifier: MIT
#include "cache/cached_pictures.h"

#include "cache/picture_file.h"
#include "core/data_location.h"
#include "core/log_contract.h"
#include "core/log_file.h"

#include <QDateTime>
#include <QFileInfo>

namespace zr
{
namespace
{

// Copying, unpacking and syncing tools move a file's time stamp a little without changing the file.
constexpr quint64 kToleranceSeconds = 120;

quint64 modificationSeconds(const QFileInfo& file)
{
    return static_cast<quint64>(file.lastModified().toSecsSinceEpoch());
}

// Null when no picture is recorded.
QVariant recordedPicture(const ThumbnailDatabase& database, const QString& sourcePath)
{
    return database.queryValue(sourcePath, QStringLiteral("thumPath"));
}

bool matchesRow(const ThumbnailDatabase& database, const QString& sourcePath)
{
    const quint64 fileTime = database.queryValue(sourcePath, QStringLiteral("fileTime")).toULongLong();
    const quint64 fileSize = database.queryValue(sourcePath, QStringLiteral("fileSize")).toULongLong();
    const QFileInfo source(sourcePath);
    // Unsigned on purpose: a time stamp that moved backwards gives a huge difference.
    return static_cast<quint64>(source.size()) == fileSize &&
           modificationSeconds(source) - fileTime <= kToleranceSeconds;
}

bool showsPresentFile(const ThumbnailDatabase& database, const QString& sourcePath, const QVariant& pngPath)
{
    return !pngPath.isNull() && matchesRow(database, sourcePath) && QFileInfo::exists(pngPath.toString());
}

} // namespace

bool hasFreshPicture(const QString& sourcePath)
{
    // The database would be made.
    if (!QFileInfo(defaultDatabasePath()).isFile())
        return false;
    const ThumbnailDatabase database{QString()};
    return showsPresentFile(database, sourcePath, recordedPicture(database, sourcePath));
}

// The suffix is doubled, as in every cache that users already have.
QString picturePath(const QString& sourcePath)
{
    const QFileInfo source(sourcePath);
    return thumbnailImageFolder() + source.fileName() + source.suffix() + QLatin1String(".png");
}

bool freshPicture(const ThumbnailDatabase& database, const QString& sourcePath)
{
    const QVariant pngPath = recordedPicture(database, sourcePath);
    const bool isFresh = showsPresentFile(database, sourcePath, pngPath);
    if (!isFresh)
        logLine(pngPath.isNull() ? line::kNoEntry : line::kStaleEntry, QLatin1String(kThrowText));
    return isFresh;
}

bool store(ThumbnailDatabase& database, const QString& sourcePath, const QImage& picture)
{
    // Taken before saving: a source that changes meanwhile must look stale next time.
    const QFileInfo source(sourcePath);
    ThumbnailRecord record;
    record.thumPath = picturePath(sourcePath);
    record.filePath = sourcePath;
    record.fileTime = modificationSeconds(source);
    record.fileSize = static_cast<quint64>(source.size());
    return savePicture(picture, record.thumPath) && database.saveRecord(sourcePath, record);
}

QString findPicture(const QString& sourcePath)
{
    const ThumbnailDatabase database{QString()};
    return recordedPicture(database, sourcePath).toString();
}

} // namespace zr
