#include "host/check_data.h"

#include "core/data_location.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryFile>
#include <QVariant>

namespace zr
{
namespace
{

const QString kDataFolder = QStringLiteral("data folder");
const QString kDatabase = QStringLiteral("database");

// Tried out, since the permissions that a system tells are not all it goes by. The trace disappears again.
bool takesFiles(const QString& folder)
{
    return QTemporaryFile(folder + QLatin1String("/check-XXXXXX")).open();
}

bool isMissingOrWritable(const QString& path)
{
    return !QFileInfo::exists(path) || QFile(path).open(QIODevice::ReadWrite | QIODevice::ExistingOnly);
}

// The closest folder above that exists.
QString existingParent(QString folder)
{
    while (!QFileInfo::exists(folder) && !QDir(folder).isRoot())
        folder = QFileInfo(folder).path();
    return folder;
}

Finding missingDataFolder()
{
    const QString parent = existingParent(dataFolder());
    if (QFileInfo(parent).isDir() && takesFiles(parent))
        return {true, kDataFolder,
                QStringLiteral("%1 is not there yet; the first thumbnail makes it").arg(dataFolder())};
    return {false, kDataFolder, QStringLiteral("%1 cannot be made: %2 is read-only").arg(dataFolder(), parent)};
}

// Counts the pictures without making or changing a file.
Finding openDatabase(const QString& connection)
{
    auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
    database.setDatabaseName(defaultDatabasePath());
    database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    database.open();
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("SELECT name FROM sqlite_master")))
        return {false, kDatabase,
                QStringLiteral("%1 is damaged; delete it, and it is made anew").arg(defaultDatabasePath())};
    // The table is missing until the first request has ended.
    const bool hasTable = query.exec(QStringLiteral("SELECT count(*) FROM thumbnail")) && query.next();
    return {true, kDatabase, QStringLiteral("pictures in it: %1").arg(hasTable ? query.value(0).toInt() : 0)};
}

} // namespace

Findings checkDataFolder()
{
    const QFileInfo folder(dataFolder());
    if (!folder.exists())
        return {missingDataFolder()};
    if (!folder.isDir())
        return {{false, kDataFolder, QStringLiteral("%1 is a file, where a folder should be").arg(folder.filePath())}};
    for (const QString& path : {folder.filePath(), thumbnailImageFolder()}) {
        if (QFileInfo::exists(path) && !takesFiles(path))
            return {{false, kDataFolder, QStringLiteral("%1 is read-only").arg(path)}};
    }
    for (const QString& path : {defaultDatabasePath(), defaultLogPath()}) {
        if (!isMissingOrWritable(path))
            return {{false, kDataFolder, QStringLiteral("%1 cannot be written").arg(path)}};
    }
    return {{true, kDataFolder, QStringLiteral("%1 is writable").arg(folder.filePath())}};
}

Findings checkDatabase()
{
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE")))
        return {{false, kDatabase, QStringLiteral("Qt's plug-in for SQLite is missing or damaged")}};
    if (!QFileInfo::exists(defaultDatabasePath()))
        return {{true, kDatabase, QStringLiteral("none yet; the first thumbnail makes it")}};
    const QString connection = QStringLiteral("check");
    const Finding finding = openDatabase(connection);
    QSqlDatabase::removeDatabase(connection);
    return {finding};
}

} // namespace zr
