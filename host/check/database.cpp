// SPDX-License-Identifier: MIT
#include "host/check/database.h"

#include "cache/database_check.h"
#include "core/data_location.h"
#include "host/check/connection.h"
#include "host/check/data.h"

#include <QFileInfo>
#include <QSqlDatabase>

namespace zr
{
namespace
{

const QString kDatabase = QStringLiteral("database");
const QString kDeleteIt = QStringLiteral("delete it, and the next thumbnail makes it anew");

Finding failure(const QString& sentence)
{
    return {Verdict::Fail, kDatabase, QStringLiteral("%1 %2").arg(defaultDatabasePath(), sentence)};
}

Finding failureOf(const CheckConnection& connection)
{
    if (connection.isBusy())
        return failure(QStringLiteral("is in use by another program for more than 5 seconds: end that program"));
    return failure(QStringLiteral("cannot be used (%1): %2").arg(connection.error(), kDeleteIt));
}

// Whether the exclusive lock of a write can be had. Changes nothing.
bool takesChanges(CheckConnection& connection)
{
    return connection.run(QStringLiteral("BEGIN EXCLUSIVE")) && connection.run(QStringLiteral("ROLLBACK"));
}

Finding lookAtUse()
{
    CheckConnection connection;
    if (!takesChanges(connection))
        return failureOf(connection);
    // The table is missing until the first request has ended.
    const QStringList count = connection.texts(QStringLiteral("SELECT count(*) FROM thumbnail"));
    return {Verdict::Ok, kDatabase, QStringLiteral("pictures in it: %1").arg(count.value(0, QStringLiteral("0")))};
}

Finding lookAtDatabase()
{
    switch (inspectDatabase(defaultDatabasePath())) {
    case DatabaseState::Damaged:
        return failure(QStringLiteral("is damaged: ") + kDeleteIt);
    case DatabaseState::Foreign:
        return failure(
            QStringLiteral("has a table with other columns, by another program or version: move it elsewhere, and the "
                           "next thumbnail makes it anew"));
    case DatabaseState::Usable:
        break;
    }
    return lookAtUse();
}

} // namespace

Findings checkDatabase()
{
    if (!QSqlDatabase::isDriverAvailable(QStringLiteral("QSQLITE")))
        return {{Verdict::Fail, kDatabase,
                 QStringLiteral("Qt's plug-in for SQLite is missing or damaged: install it again "
                                "(package libqt5sql5-sqlite)")}};
    const QString path = defaultDatabasePath();
    const QString fault = fileFault(path);
    if (!fault.isEmpty())
        return {{Verdict::Fail, kDatabase, fault}};
    if (!QFileInfo::exists(path))
        return {{Verdict::Ok, kDatabase, QStringLiteral("none yet; the first thumbnail makes it")}};
    return {lookAtDatabase()};
}

} // namespace zr
