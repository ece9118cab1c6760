// SPDX-License-Identifier: MIT
#include "cache/database_check.h"

#include "cache/thumbnail_database.h"

#include <QFileInfo>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUrl>

namespace zr
{
namespace
{

// A separate connection, since the default one belongs to ThumbnailDatabase.
class Connection
{
public:
    Connection(const QString& name, const QString& file, const QString& options) : m_name(name)
    {
        database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        database.setDatabaseName(file);
        database.setConnectOptions(options);
        database.open();
    }
    ~Connection()
    {
        database = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_name);
    }
    Q_DISABLE_COPY(Connection)

    // The first value of the statement's result; null when it fails or has none.
    QVariant value(const QString& statement) const
    {
        QSqlQuery query(database);
        return query.exec(statement) && query.next() ? query.value(0) : QVariant();
    }

    QSqlDatabase database;

private:
    QString m_name;
};

constexpr char kTable[] = "thumbnail";

QStringList columnNames(const QSqlDatabase& database)
{
    const QSqlRecord record = database.record(QLatin1String(kTable));
    QStringList names;
    for (int i = 0; i < record.count(); ++i)
        names.append(record.fieldName(i));
    return names;
}

QStringList columnNamesOfTheCache()
{
    const Connection connection(QStringLiteral("new table"), QStringLiteral(":memory:"), QString());
    QSqlQuery(connection.database).exec(createTableStatement());
    return columnNames(connection.database);
}

} // namespace

bool hasTableOfTheCache(const QSqlDatabase& database)
{
    return columnNames(database) == columnNamesOfTheCache();
}

// An immutable file is read without locks and without the files that SQLite keeps beside it.
DatabaseState inspectDatabase(const QString& path)
{
    // In the middle of a transaction the database file alone is incomplete.
    if (QFileInfo::exists(path + QLatin1String("-journal")))
        return DatabaseState::Usable;
    const QString uri = QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded) + QLatin1String("?immutable=1");
    const Connection connection(QStringLiteral("check of the cache"), uri,
                                QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_OPEN_READONLY"));
    if (connection.value(QStringLiteral("pragma quick_check(1)")) != QLatin1String("ok"))
        return DatabaseState::Damaged;
    const QVariant type = connection.value(
        QStringLiteral("select type from sqlite_master where name = '%1' collate nocase").arg(QLatin1String(kTable)));
    if (type.isNull())
        return DatabaseState::Usable;
    const bool isOurs = type == QLatin1String("table") && hasTableOfTheCache(connection.database);
    return isOurs ? DatabaseState::Usable : DatabaseState::Foreign;
}

} // namespace zr
