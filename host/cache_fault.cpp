// SPDX-License-Identifier: MIT
#include "host/cache_fault.h"

#include "cache/cached_pictures.h"
#include "cache/database_check.h"
#include "cache/thumbnail_database.h"
#include "core/data_location.h"
#include "host/file_access.h"
#include "host/platform.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

namespace zr
{
namespace
{

// A picture, its row and the database's journal may take as much.
constexpr qint64 kMinFreeBytes = 1 << 20;

QString apostropheFault(const QString& path)
{
    if (!fitsStatement(path))
        return QStringLiteral("its path has an apostrophe, which the cache cannot record: rename it");
    if (fitsStatement(dataFolder()))
        return QString();
    return QStringLiteral("the data folder's path has an apostrophe, which the cache cannot record: %1")
        .arg(otherDataFolder());
}

QString folderFault(const QString& folder)
{
    QString fault = misplacedFolderFault(folder);
    if (!fault.isEmpty() || QFileInfo(folder).isDir())
        return fault;
    const QString parent = QFileInfo(folder).path();
    fault = folderFault(parent);
    if (!fault.isEmpty() || writeFault(parent).isEmpty())
        return fault;
    return QStringLiteral("the data folder cannot be made in %1: %2").arg(parent, writeFault(parent));
}

// An existing file that may not be written, or a folder that takes no new files.
QString accessFault(const QString& path)
{
    const QString fault = writeFault(path);
    return fault.isEmpty() ? QString() : QStringLiteral("%1 cannot be written: %2").arg(path, fault);
}

// Something other than a file at `path`, a read-only file, or a missing one in a folder that takes no new files.
QString fileFault(const QString& path)
{
    const QFileInfo info(path);
    if (info.exists() ? !info.isFile() : info.isSymLink())
        return QStringLiteral("%1 is not a file: move it away").arg(path);
    if (info.exists())
        return accessFault(path);
    return QFileInfo::exists(info.path()) ? accessFault(info.path()) : QString();
}

QString pictureFault(const QString& path)
{
    const QFileInfo picture(path);
    if (!takesName(picture.path(), picture.fileName()))
        return QStringLiteral("its name is too long for that of its picture in the cache: shorten it");
    return fileFault(path);
}

} // namespace

QString misplacedFolderFault(const QString& folder)
{
    const QFileInfo info(folder);
    if (info.isDir() || !(info.exists() || info.isSymLink()))
        return QString();
    return QStringLiteral("%1 is in the place of a folder: move it away").arg(folder);
}

QString spaceFault()
{
    const QStorageInfo disk(dataFolder());
    if (!disk.isValid() || disk.bytesAvailable() >= kMinFreeBytes)
        return QString();
    return QStringLiteral("the disk is full: make room for the data folder, %1").arg(dataFolder());
}

QString databaseFault(const QString& path)
{
    QString fault = fileFault(path);
    if (!fault.isEmpty() || !QFileInfo::exists(path))
        return fault;
    // SQLite needs its journal beside the database.
    fault = accessFault(QFileInfo(path).path());
    if (!fault.isEmpty())
        return fault;
    switch (inspectDatabase(path)) {
    case DatabaseState::Damaged:
        return QStringLiteral("the cache's database is damaged: delete %1, which is made anew").arg(path);
    case DatabaseState::Foreign:
        return QStringLiteral("the cache's database is another program's or version's: move %1 away").arg(path);
    case DatabaseState::Usable:
        break;
    }
    return QString();
}

QString cacheFault(const QString& path)
{
    for (const auto& check : {
             +[](const QString& source) { return apostropheFault(source); },
             +[](const QString&) { return folderFault(QDir::cleanPath(thumbnailImageFolder())); },
             +[](const QString&) { return spaceFault(); },
             +[](const QString& source) { return pictureFault(picturePath(source)); },
             +[](const QString&) { return databaseFault(defaultDatabasePath()); },
         }) {
        const QString fault = check(path);
        if (!fault.isEmpty())
            return fault;
    }
    return QString();
}

} // namespace zr
