// SPDX-License-Identifier: MIT
#include "cache/thumbnail_database.h"

#include "core/data_location.h"
#include "core/log_file.h"
#include "tests/cache/database_rows.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QSqlQuery>
#include <QTemporaryDir>

namespace zr::test
{
namespace
{

class ThumbnailDatabaseTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        LogFile::instance()->init(QString());
    }
};

// In the order of insertion.
QStringList rows()
{
    return results("select * from thumbnail order by rowid");
}

void makeDatabase(const QString& path, const QStringList& statements)
{
    {
        auto database = QSqlDatabase::addDatabase("QSQLITE", "prepare");
        database.setDatabaseName(path);
        ASSERT_TRUE(database.open());
        for (const QString& statement : statements) {
            QSqlQuery query(database);
            ASSERT_TRUE(query.exec(statement)) << statement.toStdString();
        }
    }
    QSqlDatabase::removeDatabase("prepare");
}

TEST_F(ThumbnailDatabaseTest, WithoutAFolderEverythingFails)
{
    {
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.queryValue("/a", "thumPath").isNull());
        EXPECT_FALSE(database.saveRecord("/a", recordOf("/a")));
        EXPECT_FALSE(database.insertRecord(recordOf("/a")));
        EXPECT_FALSE(database.updateRecord("/a", recordOf("/a")));
        // Not even after the folder has been created.
        createDataFolder();
        EXPECT_FALSE(database.saveRecord("/a", recordOf("/a")));
    }
    EXPECT_FALSE(QFileInfo::exists(defaultDatabasePath()));
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(ThumbnailDatabaseTest, NewObjectWorksOnceTheFolderExists)
{
    {
        const ThumbnailDatabase closed{QString()};
    }
    createDataFolder();
    ThumbnailDatabase database{QString()};
    EXPECT_TRUE(database.saveRecord("/a", recordOf("/a")));
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(ThumbnailDatabaseTest, TableIsCreatedByTheExactStatement)
{
    createDataFolder();
    const ThumbnailDatabase database{QString()};
    QSqlQuery query("select sql from sqlite_master where name = 'thumbnail'");
    ASSERT_TRUE(query.next());
    EXPECT_EQ(query.value(0).toString(),
              "CREATE TABLE thumbnail (thumPath text, thumTime int, filePath text unique, fileTime int, fileSize int)");
}

TEST_F(ThumbnailDatabaseTest, RecordIsInsertedThenUpdatedInItsRow)
{
    createDataFolder();
    {
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.saveRecord("/a", recordOf("/a")));
        EXPECT_EQ(database.queryValue("/a", "thumPath"), QVariant("/cache//a.png"));
        EXPECT_EQ(database.queryValue("/a", "thumTime").toULongLong(), 0U);
        EXPECT_EQ(database.queryValue("/a", "filePath"), QVariant("/a"));
        EXPECT_EQ(database.queryValue("/a", "fileTime").toULongLong(), 1700000000U);
        EXPECT_EQ(database.queryValue("/a", "fileSize").toULongLong(), 5000000000U);
    }
    EXPECT_EQ(rows(), QStringList({"/cache//a.png|0|/a|1700000000|5000000000"}));

    auto changed = recordOf("/a");
    changed.thumPath = "/cache/new.png";
    changed.thumTime = 3;
    changed.fileTime = 1700000001;
    changed.fileSize = 7;
    {
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.saveRecord("/a", changed));
    }
    EXPECT_EQ(rows(), QStringList({"/cache/new.png|3|/a|1700000001|7"}));
}

TEST_F(ThumbnailDatabaseTest, KeysAreComparedAsStored)
{
    createDataFolder();
    ThumbnailDatabase database{QString()};
    EXPECT_TRUE(database.saveRecord("/a/B.stl", recordOf("/a/B.stl")));
    for (const char* other : {"/a/b.stl", "\\a\\B.stl", "/a//B.stl", "/a/B.stl "})
        EXPECT_TRUE(database.queryValue(other, "thumPath").isNull()) << other;
}

TEST_F(ThumbnailDatabaseTest, MissingColumnOrRowYieldsAnInvalidValue)
{
    createDataFolder();
    ThumbnailDatabase database{QString()};
    EXPECT_TRUE(database.saveRecord("/a", recordOf("/a")));
    EXPECT_FALSE(database.queryValue("/a", "noSuchColumn").isValid());
    EXPECT_FALSE(database.queryValue("/b", "thumPath").isValid());
}

TEST_F(ThumbnailDatabaseTest, PathWithAnApostropheCannotBeStored)
{
    createDataFolder();
    ThumbnailDatabase database{QString()};
    EXPECT_FALSE(database.saveRecord("/it's", recordOf("/it's")));
    EXPECT_TRUE(database.queryValue("/it's", "thumPath").isNull());
    EXPECT_TRUE(database.saveRecord("/a", recordOf("/a")));
    EXPECT_FALSE(database.updateRecord("/a", recordOf("/it's")));
}

TEST_F(ThumbnailDatabaseTest, PlaceholdersInAPathAreNotFilled)
{
    createDataFolder();
    const QString path = "/100%1 %2 %3 %4 %5/x.stl";
    {
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.saveRecord(path, recordOf(path)));
        EXPECT_TRUE(database.saveRecord(path, recordOf(path)));
        EXPECT_EQ(database.queryValue(path, "filePath").toString(), path);
    }
    EXPECT_EQ(rows(), QStringList({"/cache/" + path + ".png|0|" + path + "|1700000000|5000000000"}));
}

TEST_F(ThumbnailDatabaseTest, RowWithoutAPngPathRefusesEveryInsert)
{
    createDataFolder();
    {
        const ThumbnailDatabase database{QString()};
        QSqlQuery query("insert into thumbnail values(null, 0, '/a', 1, 2)");
    }
    ThumbnailDatabase database{QString()};
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(database.saveRecord("/a", recordOf("/a")));
}

TEST_F(ThumbnailDatabaseTest, FileWithoutTheTableIsRepaired)
{
    createDataFolder();
    makeDatabase(defaultDatabasePath(), {"create table other (x int)"});
    ThumbnailDatabase database{QString()};
    EXPECT_TRUE(database.saveRecord("/a", recordOf("/a")));
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(ThumbnailDatabaseTest, ForeignTableOfThatNameIsUsedAsItIs)
{
    createDataFolder();
    makeDatabase(defaultDatabasePath(), {"create table thumbnail (x int)"});
    ThumbnailDatabase database{QString()};
    EXPECT_TRUE(database.queryValue("/a", "thumPath").isNull());
    EXPECT_FALSE(database.saveRecord("/a", recordOf("/a")));
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(ThumbnailDatabaseTest, FileThatIsNotADatabaseIsLogged)
{
    createDataFolder();
    QFile file(defaultDatabasePath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, 'x'));
    file.close();

    ThumbnailDatabase database{QString()};
    EXPECT_EQ(logMessages(), QStringList({"106 database create faild"}));
    EXPECT_TRUE(database.queryValue("/a", "thumPath").isNull());
    EXPECT_FALSE(database.saveRecord("/a", recordOf("/a")));
}

TEST_F(ThumbnailDatabaseTest, FolderInPlaceOfTheFileIsLogged)
{
    ASSERT_TRUE(QDir().mkpath(defaultDatabasePath()));
    const ThumbnailDatabase database{QString()};
    EXPECT_EQ(logMessages(), QStringList({"110 database no open"}));
}

TEST_F(ThumbnailDatabaseTest, PathIsUsedOnlyForAnExistingDbFile)
{
    createDataFolder();
    const QTemporaryDir elsewhere;
    const QString given = elsewhere.filePath("other.db");
    makeDatabase(given, {"create table other (x int)"});
    const QString upper = elsewhere.filePath("upper.DB");
    const QString longer = elsewhere.filePath("longer.db2");
    ASSERT_TRUE(QFile::copy(given, upper));
    ASSERT_TRUE(QFile::copy(given, longer));
    {
        ThumbnailDatabase database(given);
        EXPECT_TRUE(database.saveRecord("/a", recordOf("/a")));
    }
    EXPECT_FALSE(QFileInfo::exists(defaultDatabasePath()));
    for (const QString& path : {upper, longer, elsewhere.filePath("missing.db"), elsewhere.path()}) {
        {
            const ThumbnailDatabase database(path);
            EXPECT_TRUE(database.queryValue("/a", "thumPath").isNull()) << path.toStdString();
        }
        EXPECT_TRUE(QFile::remove(defaultDatabasePath())) << path.toStdString();
    }
}

TEST_F(ThumbnailDatabaseTest, DefaultConnectionIsUsedForTheObjectsLifetime)
{
    createDataFolder();
    const QString name = "qt_sql_default_connection";
    EXPECT_FALSE(QSqlDatabase::contains(name));
    {
        const ThumbnailDatabase database{QString()};
        EXPECT_EQ(QSqlDatabase::connectionNames(), QStringList({name}));
        EXPECT_EQ(QSqlDatabase::database().driverName(), "QSQLITE");
    }
    EXPECT_FALSE(QSqlDatabase::contains(name));
}

TEST_F(ThumbnailDatabaseTest, EndOfOneObjectClosesTheConnectionOfAnother)
{
    createDataFolder();
    ThumbnailDatabase first{QString()};
    {
        ThumbnailDatabase second{QString()};
        EXPECT_TRUE(second.saveRecord("/a", recordOf("/a")));
        EXPECT_FALSE(first.queryValue("/a", "thumPath").isNull());
    }
    EXPECT_TRUE(first.queryValue("/a", "thumPath").isNull());
    EXPECT_FALSE(first.saveRecord("/b", recordOf("/b")));
}

} // namespace
} // namespace zr::test
