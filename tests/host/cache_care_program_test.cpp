// SPDX-License-Identifier: MIT
// What zrthumb --prune and --clear do, and what they tell.

#include "tests/host/zrthumb_fixture.h"
#include "tests/support/qt_printers.h"

#include <QSqlDatabase>
#include <QSqlQuery>

namespace zr::test
{
namespace
{

class CacheCareProgramTest : public ZrthumbTest
{
protected:
    // Their pictures look older than any request.
    void makeThumbnails(const QStringList& paths) const
    {
        ASSERT_EQ(run(paths).status, 0);
        for (const QFileInfo& picture : QDir(thumbnailImageFolder()).entryInfoList(QDir::Files))
            moveTimeStamp(picture.filePath(), -100);
    }

    void expectRun(const QString& option, const QString& line) const
    {
        const ProgramRun result = run({option});
        EXPECT_EQ(result.out, QStringList(line));
        EXPECT_EQ(result.err, QStringList());
        EXPECT_EQ(result.status, 0);
    }

    // Nothing is removed, nor changed otherwise.
    void expectFault(const QString& line) const
    {
        const QStringList before = contentsOfDataFolder();
        for (const char* const option : {"--prune", "--clear"}) {
            const ProgramRun result = run({option});
            EXPECT_EQ(result.out, QStringList());
            EXPECT_EQ(result.err, QStringList("zrthumb: " + line));
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(contentsOfDataFolder(), before);
        }
    }

    static QStringList pictures()
    {
        return QDir(thumbnailImageFolder()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    static qint64 bytesOf(const QString& name) { return QFileInfo(png(name)).size(); }
};

TEST_F(CacheCareProgramTest, PrunesWhatBelongsToFilesThatAreGone)
{
    const QStringList paths = {source("a.vrx"), source("b.vrx"), source("c.vrx")};
    makeThumbnails(paths);
    expectRun("--prune", "nothing to remove");
    const qint64 bytes = bytesOf("a.vrxvrx.png");
    ASSERT_TRUE(QFile::remove(paths[0]));
    expectRun("--prune", QStringLiteral("removed 1 row of a file that is gone and 1 picture, %1 bytes").arg(bytes));
    EXPECT_EQ(pictures(), QStringList({"b.vrxvrx.png", "c.vrxvrx.png"}));

    writeFile(png(".leftover.png"), "x");
    moveTimeStamp(png(".leftover.png"), -100);
    expectRun("--prune", "removed 1 picture, 1 byte");
    ASSERT_TRUE(QFile::remove(png("b.vrxvrx.png")));
    ASSERT_TRUE(QFile::remove(png("c.vrxvrx.png")));
    ASSERT_TRUE(QFile::remove(paths[1]));
    ASSERT_TRUE(QFile::remove(paths[2]));
    expectRun("--prune", "removed 2 rows of files that are gone");
}

TEST_F(CacheCareProgramTest, ClearsTheCacheAndARequestWorksAfterwards)
{
    const QStringList paths = {source("a.vrx"), source("b.vrx")};
    makeThumbnails(paths);
    const QByteArray log = readFile(defaultLogPath());
    const qint64 bytes = bytesOf("a.vrxvrx.png") + bytesOf("b.vrxvrx.png");
    expectRun("--clear", QStringLiteral("removed 2 rows and 2 pictures, %1 bytes").arg(bytes));
    EXPECT_EQ(pictures(), QStringList());
    EXPECT_EQ(readFile(defaultLogPath()), log);
    expectRun("--clear", "nothing to remove");

    makeThumbnails(paths);
    EXPECT_EQ(pictures().size(), 2);
    expectRun("--prune", "nothing to remove");
}

TEST_F(CacheCareProgramTest, WithoutADataFolderThereIsNothingToRemove)
{
    for (const char* const option : {"--prune", "--clear"})
        expectRun(option, "nothing to remove");
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));
}

TEST_F(CacheCareProgramTest, WrongUsageIsRejected)
{
    for (const QString option : {"--prune", "--clear"}) {
        for (const QStringList& more : {QStringList("a.stl"), QStringList("-q"), QStringList("--check")}) {
            const ProgramRun result = run(QStringList(option) + more);
            EXPECT_EQ(result.status, 2);
            EXPECT_TRUE(result.err.value(0).endsWith(" stands alone")) << result.err.join('\n').toStdString();
        }
    }
}

TEST_F(CacheCareProgramTest, DamagedAndForeignDatabasesAreLeftAlone)
{
    const QString path = source("a.vrx");
    makeThumbnails({path});
    ASSERT_TRUE(QFile::remove(path));
    writeFile(defaultDatabasePath(), QByteArray(10000, 'x'));
    expectFault(
        QStringLiteral("the cache's database is damaged: delete %1, which is made anew").arg(defaultDatabasePath()));

    ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
    {
        auto database = QSqlDatabase::addDatabase("QSQLITE", "foreign");
        database.setDatabaseName(defaultDatabasePath());
        ASSERT_TRUE(database.open());
        ASSERT_TRUE(QSqlQuery(database).exec("create table thumbnail (thumPath text, filePath text)"));
    }
    QSqlDatabase::removeDatabase("foreign");
    expectFault(QStringLiteral("the cache's database is another program's or version's: move %1 away")
                    .arg(defaultDatabasePath()));

    // It is made anew, so the pictures of the earlier one are nobody's.
    ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
    EXPECT_EQ(run({"--prune"}).out.size(), 1);
    EXPECT_EQ(pictures(), QStringList());
}

TEST_F(CacheCareProgramTest, MisplacedFilesAreTold)
{
    makeThumbnails({source("a.vrx")});
    const QString folder = QDir::cleanPath(thumbnailImageFolder());
    ASSERT_TRUE(QDir(folder).removeRecursively());
    writeFile(folder, "in the way");
    expectFault(folder + " is in the place of a folder: move it away");
    ASSERT_TRUE(QFile::remove(folder));

    ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
    ASSERT_TRUE(QDir().mkpath(defaultDatabasePath()));
    expectFault(defaultDatabasePath() + " is not a file: move it away");
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    writeFile(dataFolder(), "in the way");
    const ProgramRun result = run({"--prune"});
    EXPECT_EQ(result.err, QStringList("zrthumb: " + dataFolder() + " is in the place of a folder: move it away"));
    EXPECT_EQ(result.status, 1);
    ASSERT_TRUE(QFile::remove(dataFolder()));
}

} // namespace
} // namespace zr::test
