// SPDX-License-Identifier: MIT
#include "tests/cache/care_fixture.h"

#include "cache/thumbnail_database.h"
#include "core/data_location.h"
#include "tests/cache/database_rows.h"
#include "tests/support/files.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlQuery>

namespace zr::test
{

void CareTest::SetUp()
{
    DataFolderTest::SetUp();
    ASSERT_TRUE(QDir().mkpath(thumbnailImageFolder()));
    execute(createTableStatement());
}

QString CareTest::source(const QString& name) const
{
    return writeFile(m_folder.filePath(name), "source");
}

QString CareTest::picture(const QString& name, qint64 ageSeconds, int bytes)
{
    const QString path = writeFile(pngPath(name), QByteArray(bytes, 'p'));
    moveTimeStamp(path, -ageSeconds);
    return path;
}

QString CareTest::pngPath(const QString& name)
{
    return thumbnailImageFolder() + name;
}

// The cache's own statements take no apostrophes.
void CareTest::execute(const QString& statement, const QList<QVariantList>& values)
{
    const QString name = QStringLiteral("test");
    {
        auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(defaultDatabasePath());
        ASSERT_TRUE(database.open());
        ASSERT_TRUE(database.transaction());
        QSqlQuery query(database);
        ASSERT_TRUE(query.prepare(statement)) << statement.toStdString();
        for (const QVariantList& row : values) {
            for (const QVariant& value : row)
                query.addBindValue(value);
            ASSERT_TRUE(query.exec());
        }
        ASSERT_TRUE(database.commit());
    }
    QSqlDatabase::removeDatabase(name);
}

void CareTest::addRow(const QString& filePath, const QString& thumPath)
{
    execute(QStringLiteral("insert into thumbnail values(?, 0, ?, 1, 2)"), {{thumPath, filePath}});
}

QStringList CareTest::rows()
{
    return results("select filePath from thumbnail order by filePath");
}

QStringList CareTest::pictures()
{
    return QDir(thumbnailImageFolder())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace zr::test
