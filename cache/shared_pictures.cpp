// SPDX-License-Identifier: MIT
#include "cache/shared_pictures.h"

#include "core/data_location.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

namespace zr
{
namespace
{

// A separate connection while the object lives; requests have their own.
class CacheConnection
{
public:
    CacheConnection()
    {
        // SQLite would create a missing file, and block on a pipe.
        if (!QFileInfo(defaultDatabasePath()).isFile())
            return;
        auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name());
        database.setDatabaseName(defaultDatabasePath());
        database.open();
    }
    ~CacheConnection() { QSqlDatabase::removeDatabase(name()); }
    Q_DISABLE_COPY(CacheConnection)

    // Never valid when the database is not open.
    static QSqlQuery query() { return QSqlQuery(QString(), QSqlDatabase::database(name())); }

private:
    static QString name() { return QStringLiteral("shared pictures"); }
};

QString pngOf(const QString& path)
{
    auto query = CacheConnection::query();
    query.prepare(QStringLiteral("SELECT thumPath FROM thumbnail WHERE filePath = ?"));
    query.addBindValue(path);
    return query.exec() && query.next() ? query.value(0).toString() : QString();
}

// No file has this size.
void makeStale(const QString& path)
{
    auto query = CacheConnection::query();
    query.prepare(QStringLiteral("UPDATE thumbnail SET fileSize = -1 WHERE filePath = ?"));
    query.addBindValue(path);
    query.exec();
}

} // namespace

SharedPictures::SharedPictures()
{
    const CacheConnection connection;
    auto query = CacheConnection::query();
    query.setForwardOnly(true);
    query.exec(
        QStringLiteral("SELECT min(thumPath) FROM thumbnail GROUP BY thumPath COLLATE NOCASE HAVING count(*) > 1"));
    while (query.next())
        m_sharedPngs.insert(query.value(0).toString().toCaseFolded());
}

void SharedPictures::prepare(const QString& path, bool isRepeated) const
{
    const CacheConnection connection;
    const QString pngPath = pngOf(path);
    if (!pngPath.isEmpty() && (isRepeated || m_sharedPngs.contains(pngPath.toCaseFolded())))
        makeStale(path);
}

} // namespace zr
