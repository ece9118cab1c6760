// SPDX-License-Identifier: MIT
#include "cache/thumbnail_database.h"

#include "core/data_location.h"
#include "core/log_file.h"

#include <QFileInfo>
#include <QSqlQuery>
#include <QSqlRecord>

namespace zr
{
namespace
{

// Recursive, since objects of one thread may share the connection.
std::recursive_mutex& connectionMutex()
{
    static auto* const mutex = new std::recursive_mutex;
    return *mutex;
}

// Runs on the default connection.
QSqlQuery newQuery()
{
    return QSqlQuery(QString(), QSqlDatabase());
}

} // namespace

// An apostrophe ends a text. That usually makes the statement invalid, but a crafted name can turn it into another
// statement, which lists or changes other files' rows. Statements with such texts are treated as invalid without asking
// SQLite.
bool fitsStatement(const QString& text)
{
    return !text.contains(QLatin1Char('\''));
}

QString createTableStatement()
{
    return QStringLiteral("create table if not exists thumbnail (thumPath text, thumTime int, filePath text unique, "
                          "fileTime int, fileSize int)");
}

ThumbnailDatabase::ThumbnailDatabase(const QString& path) : m_turn(connectionMutex()), m_path(path)
{
    if (!m_path.endsWith(QLatin1String(".db")) || !QFileInfo(m_path).isFile())
        m_path = defaultDatabasePath();
    open();
}

ThumbnailDatabase::~ThumbnailDatabase()
{
    const QString name = m_database.connectionName();
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

void ThumbnailDatabase::open()
{
    const QString name = QLatin1String(QSqlDatabase::defaultConnection);
    m_database = QSqlDatabase::contains(name) ? QSqlDatabase::database(name, true)
                                              : QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    m_database.setDatabaseName(m_path);
    if (m_database.isOpen())
        return;
    if (m_database.open()) {
        createTable();
    } else {
        logLine(kDatabaseNotOpen);
        m_ok = false;
    }
}

void ThumbnailDatabase::createTable()
{
    auto query = newQuery();
    if (!query.exec(createTableStatement())) {
        logLine(kTableNotMade);
        m_ok = false;
    }
}

QVariant ThumbnailDatabase::queryValue(const QString& filePath, const QString& column) const
{
    if (!m_ok || !fitsStatement(filePath))
        return {};
    auto query = newQuery();
    if (!query.exec(QStringLiteral("select * from thumbnail where filePath='%1';").arg(filePath)) || !query.next())
        return {};
    const int index = query.record().indexOf(column);
    return index < 0 ? QVariant() : query.value(index);
}

bool ThumbnailDatabase::saveRecord(const QString& filePath, const ThumbnailRecord& record)
{
    const auto hasRow = [&] { return !queryValue(filePath, QStringLiteral("thumPath")).isNull(); };
    if (!hasRow()) {
        if (insertRecord(record))
            return true;
        // Another process that shows the same folder may have inserted the row first.
        if (!hasRow())
            return false;
    }
    return updateRecord(filePath, record);
}

// The placeholders are filled in one step, so that a "%2" inside a path is not taken for one.

bool ThumbnailDatabase::insertRecord(const ThumbnailRecord& record)
{
    if (!m_ok || !fitsStatement(record.thumPath) || !fitsStatement(record.filePath))
        return false;
    auto query = newQuery();
    return query.exec(QStringLiteral("insert into thumbnail values('%1', %2, '%3', %4, %5);")
                          .arg(record.thumPath, QString::number(record.thumTime), record.filePath,
                               QString::number(record.fileTime), QString::number(record.fileSize)));
}

bool ThumbnailDatabase::updateRecord(const QString& filePath, const ThumbnailRecord& record)
{
    if (!m_ok || !fitsStatement(record.thumPath) || !fitsStatement(filePath))
        return false;
    auto query = newQuery();
    return query.exec(QStringLiteral("update thumbnail set thumPath = '%1', thumTime = %2, fileTime = %3, "
                                     "fileSize = %4 where filePath = '%5';")
                          .arg(record.thumPath, QString::number(record.thumTime), QString::number(record.fileTime),
                               QString::number(record.fileSize), filePath));
}

} // namespace zr
