// SPDX-License-Identifier: MIT
#include "tests/support/foreign_database.h"

#include "core/data_location.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <gtest/gtest.h>

namespace zr::test
{

void overwriteDatabase(qint64 offset, qint64 bytes)
{
    QFile file(defaultDatabasePath());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_LE(offset + bytes, file.size());
    file.seek(offset);
    file.write(QByteArray(static_cast<int>(bytes), '\xA5'));
}

void makeForeignDatabase(const QStringList& statements)
{
    QFile::remove(defaultDatabasePath());
    const QString name = QStringLiteral("foreign");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(defaultDatabasePath());
        ASSERT_TRUE(database.open());
        for (const QString& statement : statements)
            ASSERT_FALSE(database.exec(statement).lastError().isValid()) << statement.toStdString();
    }
    QSqlDatabase::removeDatabase(name);
}

} // namespace zr::test
