// SPDX-License-Identifier: MIT
#include "host/check/connection.h"

#include "core/data_location.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace zr
{
namespace
{

const QString kConnection = QStringLiteral("check");

// SQLite's SQLITE_BUSY, and the part of an error code that holds it.
constexpr int kBusy = 5;
constexpr int kPrimaryCode = 0xFF;

} // namespace

CheckConnection::CheckConnection()
{
    auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), kConnection);
    database.setDatabaseName(defaultDatabasePath());
    database.open();
}

CheckConnection::~CheckConnection()
{
    QSqlDatabase::removeDatabase(kConnection);
}

bool CheckConnection::run(const QString& statement, const QVariant& value)
{
    texts(statement, value);
    return m_error.isEmpty();
}

QStringList CheckConnection::texts(const QString& statement, const QVariant& value)
{
    QSqlQuery query(QSqlDatabase::database(kConnection, false));
    QStringList texts;
    if (query.prepare(statement)) {
        if (value.isValid())
            query.addBindValue(value);
        query.exec();
        while (query.next())
            texts += query.value(0).toString();
    }
    m_isBusy = (query.lastError().nativeErrorCode().toInt() & kPrimaryCode) == kBusy;
    m_error = query.lastError().isValid() ? query.lastError().databaseText() : QString();
    return texts;
}

} // namespace zr
