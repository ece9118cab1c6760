// SPDX-License-Identifier: MIT
// File names that try to become part of a statement: no name reads, changes or removes another file's row or the table.
// The comments say what a name would do if the database did not refuse it.

#include "cache/thumbnail_database.h"

#include "core/data_location.h"
#include "tests/cache/database_rows.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

namespace zr::test
{
namespace
{

constexpr char kTable[] =
    "CREATE TABLE thumbnail (thumPath text, thumTime int, filePath text unique, fileTime int, fileSize int)";

QStringList rows()
{
    return results("select * from thumbnail order by filePath");
}

class HostileNamesTest : public DataFolderTest, public ::testing::WithParamInterface<const char*>
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        createDataFolder();
        for (const char* victim : {"/a.stl", "/b.stl", "/c.stl"})
            ASSERT_TRUE(ThumbnailDatabase{QString()}.insertRecord(recordOf(victim)));
        m_rows = rows();
    }

    // Other files keep their rows.
    void expectVictimsUntouched(const QStringList& rowsNow)
    {
        EXPECT_EQ(rowsNow, m_rows);
        EXPECT_EQ(results("select sql from sqlite_master where type <> 'index'"), QStringList(kTable));
    }

private:
    QStringList m_rows;
};

class NamesWithApostropheTest : public HostileNamesTest
{
};

TEST_P(NamesWithApostropheTest, AreNotRecordedAndAffectNoOtherRow)
{
    const QString name = GetParam();
    {
        ThumbnailDatabase database{QString()};
        for (const char* column : {"thumPath", "fileTime", "fileSize"})
            EXPECT_TRUE(database.queryValue(name, column).isNull());
        EXPECT_FALSE(database.saveRecord(name, recordOf(name)));
        EXPECT_FALSE(database.insertRecord(recordOf(name)));
        EXPECT_FALSE(database.updateRecord(name, recordOf(name)));
        // Also if only the picture's path has it, as in a profile folder with an apostrophe.
        ThumbnailRecord picture = recordOf("/d.stl");
        picture.thumPath = name;
        EXPECT_FALSE(database.insertRecord(picture));
        EXPECT_FALSE(database.updateRecord("/a.stl", picture));
    }
    expectVictimsUntouched(rows());
}

INSTANTIATE_TEST_SUITE_P(
    Names, NamesWithApostropheTest,
    ::testing::Values(
        "/it's.stl", "'", "/''.stl", "/it''s.stl", // the last two would be recorded under another name
        "/x' or 1 or '.stl",                       // would get the picture of another file, then change all rows
        "/x' or 'a'='a' or '.stl", "/x'--.stl", "/x' or 1--.stl",
        "/x' union select char(47),0,char(47),1,2--.stl", // would return any row it likes
        "/x',0,char(47)||'a.stl',1,2) on conflict(filePath) do update set fileSize=7--.stl", // would change one row
        "/x', thumTime = 9 where 1--.stl", "/x'; drop table thumbnail;--.stl",
        "/x'; delete from thumbnail where '1'='1", "/x';attach database 'y' as z;--.stl", "/x%1'%2.stl",
        "/x\n' or 1 or '.stl"));

// Everything else is plain text to SQLite.
class NamesWithoutApostropheTest : public HostileNamesTest
{
};

TEST_P(NamesWithoutApostropheTest, AreRecordedUnchanged)
{
    const QString name = QString::fromUtf8(GetParam());
    ThumbnailRecord record = recordOf(name);
    for (const quint64 size : {1U, 2U}) {
        record.fileSize = size;
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.saveRecord(name, record));
        EXPECT_EQ(database.queryValue(name, "thumPath").toString(), record.thumPath);
        EXPECT_EQ(database.queryValue(name, "filePath").toString(), name);
        EXPECT_EQ(database.queryValue(name, "fileSize").toULongLong(), size);
    }
    QStringList found = rows();
    EXPECT_EQ(found.removeAll(QStringLiteral("%1|0|%2|1700000000|2").arg(record.thumPath, name)), 1);
    expectVictimsUntouched(found);
}

INSTANTIATE_TEST_SUITE_P(Names, NamesWithoutApostropheTest,
                         ::testing::Values("/%1.stl", "/%2%3%4%5.stl", "/%L1 %%1 %99.stl",
                                           "/a;drop table thumbnail;--.stl", "/\" or 1 or \".stl", "/`x` [y] (z).stl",
                                           "/x\\.stl", "/x\\", "/--", "/*x*/", "/x\ny.stl", "/x\ty\r.stl",
                                           "/\xE2\x80\x98quoted\xE2\x80\x99\xEF\xBC\x87.stl", "/..", "/..stl",
                                           "/NUL.stl", "/?1 :a @b $c.stl", "/\xF0\x9F\x96\xA8.stl"));

TEST_F(HostileNamesTest, LongNamesAreRecorded)
{
    const QString name = QStringLiteral("/") + QString(32767, QLatin1Char('n')) + QStringLiteral(".stl");
    {
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.saveRecord(name, recordOf(name)));
        EXPECT_EQ(database.queryValue(name, "thumPath").toString(), recordOf(name).thumPath);
    }
    QStringList found = rows();
    found.removeLast();
    expectVictimsUntouched(found);
}

// No path of a file contains a zero character; one that did would end the statement in the middle of a string.
TEST_F(HostileNamesTest, ZeroCharacterMakesTheStatementFail)
{
    const QString name = QStringLiteral("/a.stl") + QChar(0) + QStringLiteral("x.stl");
    {
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.queryValue(name, "thumPath").isNull());
        EXPECT_FALSE(database.saveRecord(name, recordOf(name)));
        EXPECT_FALSE(database.updateRecord("/a.stl", recordOf(name)));
    }
    expectVictimsUntouched(rows());
}

// SQLite joins half a surrogate pair with the next character. At the end of a string that is the statement's
// apostrophe, so both the middle and the end of strings are tested.
TEST_F(HostileNamesTest, HalfASurrogatePairStaysInsideItsName)
{
    for (const int half : {0xD800, 0xDBFF, 0xDC00, 0xDFFF}) {
        const QString within = QStringLiteral("/x") + QChar(half) + QStringLiteral("y.stl");
        const QString atEnd = QStringLiteral("/x") + QChar(half);
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.queryValue(within, "thumPath").isNull());
        EXPECT_TRUE(database.queryValue(atEnd, "thumPath").isNull());
        EXPECT_FALSE(database.updateRecord(atEnd, recordOf("/x")));
        ThumbnailRecord record = recordOf(atEnd);
        EXPECT_FALSE(database.insertRecord(record));
        record.thumPath = atEnd;
        EXPECT_FALSE(database.updateRecord("/a.stl", record));
    }
    expectVictimsUntouched(rows());
}

} // namespace
} // namespace zr::test
