// SPDX-License-Identifier: MIT
// The reasons that a user sees when the cache cannot keep a picture.

#include "host/cache_fault.h"

#include "cache/cached_pictures.h"
#include "core/data_location.h"
#include "host/request.h"
#include "tests/host/plain_words.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"
#include "tools/samples/vrx_bytes.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#ifdef Q_OS_LINUX
#include "tests/support/unprivileged.h"

#include <unistd.h>
#endif

namespace zr::test
{
namespace
{

class CacheFaultTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        EXPECT_EQ(reasonOf(source("earlier.vrx")), "");
        m_source = source("a.vrx");
        EXPECT_EQ(cacheFault(m_source), "");
    }

    QString source(const QString& name) const
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        samples::VrxParts parts;
        parts.preview.width = 2;
        parts.preview.height = 2;
        parts.preview.data = samples::wordBytes({0, 1, 1, 1});
        return writeFile(path, samples::vrxBytes(parts));
    }

    static QString reasonOf(const QString& path) { return requestThumbnail(path, QString()).failure.reason; }

    static void expectReason(const QString& path, const QString& reason)
    {
        EXPECT_EQ(reasonOf(path), reason);
        expectPlainWords(QString(reason)
                             .remove("XDG_DATA_HOME")
                             .remove(picturePath(path))
                             .remove(defaultDatabasePath())
                             .remove(dataFolder()));
    }

    // For the time when the cache has been repaired.
    void expectRequestWorks() const { EXPECT_EQ(reasonOf(m_source), ""); }

    QTemporaryDir m_folder;
    QString m_source;
};

// A database made by another program.
void makeDatabase(const QStringList& statements)
{
    const QString name = QStringLiteral("other program");
    {
        auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(defaultDatabasePath());
        ASSERT_TRUE(database.open());
        for (const QString& statement : statements)
            ASSERT_TRUE(QSqlQuery(database).exec(statement)) << statement.toStdString();
    }
    QSqlDatabase::removeDatabase(name);
}

TEST_F(CacheFaultTest, ApostropheInThePathIsReported)
{
    for (const char* name : {"it's.vrx", "it's/a.vrx"})
        expectReason(source(name), "its path has an apostrophe, which the cache cannot record: rename it");
}

TEST_F(CacheFaultTest, TooLongNameIsReported)
{
    EXPECT_EQ(reasonOf(source(QString(244, 'n') + ".vrx")), "");
    expectReason(source(QString(245, 'n') + ".vrx"),
                 "its name is too long for that of its picture in the cache: shorten it");
}

TEST_F(CacheFaultTest, FolderInPlaceOfThePictureIsReported)
{
    ASSERT_TRUE(QDir().mkpath(picturePath(m_source)));
    expectReason(m_source, picturePath(m_source) + " is not a file: move it away");
    ASSERT_TRUE(QDir(picturePath(m_source)).removeRecursively());
    expectRequestWorks();
}

TEST_F(CacheFaultTest, FilesInPlaceOfTheFoldersAreReported)
{
    for (const QString& folder : {QDir::cleanPath(thumbnailImageFolder()), dataFolder()}) {
        ASSERT_TRUE(QDir(folder).removeRecursively());
        writeFile(folder, "in the way");
        EXPECT_EQ(reasonOf(m_source), folder + " is in the place of a folder: move it away");
        ASSERT_TRUE(QFile::remove(folder));
        expectRequestWorks();
    }
}

struct DatabaseFault {
    const char* name;
    void (*make)();
    QString reason;
};

std::ostream& operator<<(std::ostream& out, const DatabaseFault& row)
{
    return out << row.name;
}

class DatabaseFaultTest : public CacheFaultTest, public ::testing::WithParamInterface<DatabaseFault>
{
};

TEST_P(DatabaseFaultTest, IsReportedAndANewOneWorks)
{
    ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
    GetParam().make();
    const auto listed = [] {
        return QDir(dataFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    const QString reason = GetParam().reason.arg(defaultDatabasePath());
    expectReason(m_source, reason);

    const QByteArray before = readFile(defaultDatabasePath());
    const QStringList filesBefore = listed();
    EXPECT_EQ(cacheFault(m_source), reason);
    EXPECT_EQ(readFile(defaultDatabasePath()), before);
    EXPECT_EQ(listed(), filesBefore);

    ASSERT_TRUE(QFile::remove(defaultDatabasePath()) || QDir().rmdir(defaultDatabasePath()));
    expectRequestWorks();
}

const QString kDamaged = "the cache's database is damaged: delete %1, which is made anew";
const QString kForeign = "the cache's database is another program's or version's: move %1 away";
const DatabaseFault kDatabaseFaults[] = {
    {"Garbage", [] { writeFile(defaultDatabasePath(), QByteArray(10000, 'x')); }, kDamaged},
    {"CutShort",
     [] {
         makeDatabase({"create table thumbnail (thumPath text, thumTime int, filePath text unique, fileTime int, "
                       "fileSize int)"});
         ASSERT_TRUE(QFile::resize(defaultDatabasePath(), 4096));
     },
     kDamaged},
    {"FewerColumns", [] { makeDatabase({"create table thumbnail (thumPath text, filePath text)"}); }, kForeign},
    {"OtherColumns", [] { makeDatabase({"create table thumbnail (a text, b int, c text, d int, e int)"}); }, kForeign},
    {"View", [] { makeDatabase({"create view thumbnail as select 1 as thumPath"}); }, kForeign},
    {"Index",
     [] {
         makeDatabase({"create table t (a int)", "create index thumbnail on t (a)"});
     },
     kForeign},
    {"Folder", [] { ASSERT_TRUE(QDir().mkpath(defaultDatabasePath())); }, "%1 is not a file: move it away"},
};

INSTANTIATE_TEST_SUITE_P(Database, DatabaseFaultTest, ::testing::ValuesIn(kDatabaseFaults),
                         [](const auto& row) { return std::string(row.param.name); });

// The request waits for the lock; the check of the database afterwards does not.
TEST_F(CacheFaultTest, LockedDatabaseIsReported)
{
    const QString name = QStringLiteral("locks");
    {
        auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(defaultDatabasePath());
        ASSERT_TRUE(database.open());
        ASSERT_TRUE(QSqlQuery(database).exec("begin immediate"));
        ASSERT_TRUE(QSqlQuery(database).exec("delete from thumbnail"));
        expectReason(
            m_source,
            "the picture could not be saved in the cache: another program may have its database locked; try again");
    }
    QSqlDatabase::removeDatabase(name);
    expectRequestWorks();
}

#ifdef Q_OS_LINUX

TEST_F(CacheFaultTest, ApostropheInTheDataFolderIsReported)
{
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.filePath("it's")));
    expectReason(m_source, "the data folder's path has an apostrophe, which the cache cannot record: set XDG_DATA_HOME "
                           "to a folder without one");
    qputenv("XDG_DATA_HOME", before);
}

TEST_F(CacheFaultTest, DanglingLinkInPlaceOfTheDatabaseIsReported)
{
    ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
    ASSERT_TRUE(QFile::link("/no/such/folder/file", defaultDatabasePath()));
    expectReason(m_source, defaultDatabasePath() + " is not a file: move it away");
}

TEST_F(CacheFaultTest, WriteProtectionIsReported)
{
    const QString folder = QDir::cleanPath(thumbnailImageFolder());
    struct Case {
        QString path;
        mode_t closed;
        mode_t open;
    };
    const Unprivileged user({QFileInfo(dataFolder()).path(), m_folder.path()});
    for (const Case& row :
         {Case{folder, 0555, 0755}, Case{dataFolder(), 0555, 0755}, Case{defaultDatabasePath(), 0444, 0644}}) {
        const QString path = source(QString::number(qHash(row.path)) + ".vrx");
        setMode(row.path, row.closed);
        EXPECT_EQ(reasonOf(path), row.path + " cannot be written: permission denied");
        setMode(row.path, row.open);
        EXPECT_EQ(reasonOf(path), "");
    }

    expectRequestWorks();
    moveTimeStamp(m_source, 1000);
    setMode(picturePath(m_source), 0444);
    EXPECT_EQ(reasonOf(m_source), picturePath(m_source) + " cannot be written: permission denied");
}

TEST_F(CacheFaultTest, DataFolderThatCannotBeCreatedIsReported)
{
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    const QString parent = QFileInfo(dataFolder()).path();
    const Unprivileged user({parent, m_folder.path()});
    setMode(parent, 0555);
    EXPECT_EQ(reasonOf(m_source), "the data folder cannot be made in " + parent + ": permission denied");
    setMode(parent, 0755);
    expectRequestWorks();
}

#endif

} // namespace
} // namespace zr::test
