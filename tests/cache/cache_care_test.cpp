// SPDX-License-Identifier: MIT
#include "cache/cache_care.h"

#include "core/data_location.h"
#include "tests/cache/care_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFileInfo>

#include <gmock/gmock.h>

#ifdef Q_OS_LINUX
#include "tests/support/unprivileged.h"

#include <sys/stat.h>
#endif

namespace zr::test
{
namespace
{

class CacheCareTest : public CareTest
{
protected:
    // Nothing here is young, and everything can be done.
    static CareResult expectDone(CareResult (*care)(const CareCallbacks&))
    {
        CareResult result = care({{}, [] { ADD_FAILURE() << "there is nothing to wait for"; }});
        EXPECT_EQ(result.databaseError, "");
        EXPECT_EQ(result.keptPictures, 0) << result.keptReason.toStdString();
        EXPECT_FALSE(result.isFolderClosed);
        EXPECT_FALSE(result.isInterrupted);
        return result;
    }
    static CareResult prune() { return expectDone(pruneCache); }
    static CareResult clear() { return expectDone(clearCache); }

    QString missing(const QString& name) const { return m_folder.filePath(name); }
};

TEST_F(CacheCareTest, RowsOfGoneFilesAndTheirPicturesAreRemoved)
{
    const QString kept = source("kept.stl");
    addRow(kept, picture("kept.stlstl.png"));
    addRow(missing("gone.stl"), picture("gone.stlstl.png", 100, 1000));
    addRow(missing("no-folder/gone.stl"), picture("other.stlstl.png", 100, 200));
    addRow(kept + "/in-a-file.stl", pngPath("missing.stlstl.png"));
    CareResult result = prune();
    EXPECT_EQ(result.rows, 3);
    EXPECT_EQ(result.pictures, 2);
    EXPECT_EQ(result.bytes, 1200);
    EXPECT_EQ(rows(), QStringList(kept));
    EXPECT_EQ(pictures(), QStringList("kept.stlstl.png"));

    result = prune();
    EXPECT_EQ(result.rows + result.pictures + result.bytes, 0);
}

TEST_F(CacheCareTest, PictureThatAnotherRowNamesStays)
{
    const QString png = picture("part.stlstl.png");
    addRow(source("part.stl"), png);
    addRow(missing("elsewhere/part.stl"), png);
    const CareResult result = prune();
    EXPECT_EQ(result.rows, 1);
    EXPECT_EQ(result.pictures, 0);
    EXPECT_EQ(pictures(), QStringList("part.stlstl.png"));
}

TEST_F(CacheCareTest, PicturesAreNamedByTheirFileNamesAlone)
{
    picture("part.stlstl.png");
    addRow(source("part.stl"), "/an/earlier/place/part.stlstl.png");
    EXPECT_EQ(prune().pictures, 0);
}

TEST_F(CacheCareTest, PathsOfRowsAreNotFollowed)
{
    const QString outside = source("outside.png");
    const QString inDataFolder = writeFile(dataFolder() + "/own.png", "own");
    moveTimeStamp(outside, -100);
    moveTimeStamp(inDataFolder, -100);
    addRow(missing("a.stl"), outside);
    addRow(missing("b.stl"), pngPath("../own.png"));
    const CareResult result = prune();
    EXPECT_EQ(result.rows, 2);
    EXPECT_EQ(result.pictures, 0);
    clear();
    EXPECT_TRUE(QFileInfo::exists(outside));
    EXPECT_TRUE(QFileInfo::exists(inDataFolder));
}

TEST_F(CacheCareTest, OnlyPngsInTheFolderItselfAreRemoved)
{
    for (const char* const name :
         {"orphan.png", ".3w5e11264sgsf.png", "it's.png", "\xC3\xBC\xE2\x82\xAC.png", "%1 a.png"})
        picture(QString::fromUtf8(name));
    const QStringList others = {".3w5e11264sgsf", "a.PNG.txt", "a.jpg", "apng", "folder.png"};
    for (const QString& name : others.mid(0, 4))
        picture(name);
    ASSERT_TRUE(QDir().mkpath(pngPath("folder.png")));
    picture("folder.png/below.png");
    const CareResult result = prune();
    EXPECT_EQ(result.pictures, 5);
    EXPECT_EQ(result.bytes, 50);
    EXPECT_THAT(pictures(), ::testing::UnorderedElementsAreArray(others));
    EXPECT_TRUE(QFileInfo::exists(pngPath("folder.png/below.png")));
}

TEST_F(CacheCareTest, RowsThatCannotBeJudgedStay)
{
    for (const char* const path : {"", "relative.stl", "../relative.stl"})
        addRow(path, pngPath("a.png"));
    execute("insert into thumbnail values(null, null, null, null, null)");
    EXPECT_EQ(prune().rows, 0);
    EXPECT_EQ(rows().size(), 4);
    EXPECT_EQ(clear().rows, 4);
}

TEST_F(CacheCareTest, ApostrophesAreAsAnyOtherCharacter)
{
    const QString kept = source("it's.stl");
    addRow(kept, picture("it's.stlstl.png"));
    addRow(missing("x' or 1 or '.stl"), picture("x' or 1 or '.stlstl.png"));
    const CareResult result = prune();
    EXPECT_EQ(result.rows, 1);
    EXPECT_EQ(result.pictures, 1);
    EXPECT_EQ(rows(), QStringList(kept));
    EXPECT_EQ(pictures(), QStringList("it's.stlstl.png"));
}

// More than are read in one piece, with gaps in their numbers.
TEST_F(CacheCareTest, ThousandsOfRowsArePruned)
{
    constexpr int kRows = 5000;
    const QString kept = source("kept.stl");
    QList<QVariantList> values;
    QStringList keptRows;
    for (int i = 0; i < kRows; ++i) {
        const bool isKept = i % 3 == 0;
        const QString path = isKept ? m_folder.filePath(QString(i / 3, '/') + "kept.stl") : missing(QString::number(i));
        values.append({pngPath(QString::number(i) + ".png"), path});
        if (isKept)
            keptRows.append(path);
    }
    execute("insert into thumbnail values(?, 0, ?, 1, 2)", values);
    execute("delete from thumbnail where rowid between 500 and 3000 and rowid % 3 <> 1");
    const int gone = rows().size() - keptRows.size();
    for (const char* const name : {"0.png", "4998.png", "4999.png"})
        picture(name);
    const CareResult result = prune();
    EXPECT_EQ(result.rows, gone);
    EXPECT_EQ(result.pictures, 1);
    keptRows.sort();
    EXPECT_EQ(rows(), keptRows);
    EXPECT_EQ(pictures(), QStringList({"0.png", "4998.png"}));
}

TEST_F(CacheCareTest, ClearingLeavesAnEmptyTableAndTheLog)
{
    const QString log = writeFile(defaultLogPath(), "line\n");
    const QString kept = source("kept.stl");
    addRow(kept, picture("kept.stlstl.png", 100, 70));
    addRow(missing("gone.stl"), pngPath("gone.stlstl.png"));
    picture("orphan.png", 100, 7);
    const CareResult result = clear();
    EXPECT_EQ(result.rows, 2);
    EXPECT_EQ(result.pictures, 2);
    EXPECT_EQ(result.bytes, 77);
    EXPECT_EQ(rows(), QStringList());
    EXPECT_EQ(pictures(), QStringList());
    EXPECT_EQ(readFile(log), "line\n");
    EXPECT_TRUE(QFileInfo::exists(kept));
    EXPECT_EQ(QDir(dataFolder()).entryList(QDir::Files), QStringList({"thumbnail.db", "thumbnail.log"}));
}

TEST_F(CacheCareTest, NothingIsCreated)
{
    for (auto* const care : {prune, clear}) {
        picture("orphan.png");
        ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
        EXPECT_EQ(care().pictures, 1);
        EXPECT_FALSE(QFileInfo::exists(defaultDatabasePath()));

        // Before its first change, a new database is an empty file.
        picture("orphan.png");
        writeFile(defaultDatabasePath(), {});
        EXPECT_EQ(care().pictures, 1);
        EXPECT_EQ(QFileInfo(defaultDatabasePath()).size(), 0);

        ASSERT_TRUE(QDir(thumbnailImageFolder()).removeRecursively());
        EXPECT_EQ(care().pictures, 0);
        EXPECT_FALSE(QFileInfo::exists(thumbnailImageFolder()));
        ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
        EXPECT_EQ(care().pictures, 0);
        EXPECT_FALSE(QFileInfo::exists(dataFolder()));
        ASSERT_TRUE(QDir().mkpath(thumbnailImageFolder()));
        writeFile(defaultDatabasePath(), {});
    }
}

TEST_F(CacheCareTest, CancelledCareEndsEarlyAndTellsWhatItHasDone)
{
    QList<QVariantList> values;
    for (int i = 0; i < 2500; ++i)
        values.append({pngPath("a.png"), missing(QString::number(i))});
    execute("insert into thumbnail values(?, 0, ?, 1, 2)", values);
    picture("orphan.png");
    // Asked before each piece.
    int asked = 0;
    const CareResult result = pruneCache({[&asked] { return ++asked == 3; }, {}});
    EXPECT_TRUE(result.isInterrupted);
    EXPECT_EQ(result.rows, 2000);
    EXPECT_EQ(result.pictures, 0);
    EXPECT_EQ(rows().size(), 500);

    EXPECT_EQ(clearCache({[] { return true; }, {}}).rows, 0);
    EXPECT_EQ(rows().size(), 500);
    EXPECT_EQ(pictures(), QStringList("orphan.png"));
}

TEST_F(CacheCareTest, DatabaseThatCannotBeUsedKeepsThePictures)
{
    picture("orphan.png");
    for (const char* const statement : {"alter table thumbnail add column more", "drop table thumbnail",
                                        "create view thumbnail as select 1 as thumPath, 2 as filePath"}) {
        execute(statement);
        if (QString(statement).startsWith("drop"))
            continue;
        for (auto* const care : {pruneCache, clearCache}) {
            const CareResult result = care({});
            EXPECT_EQ(result.databaseError, "its table is another program's or version's");
            EXPECT_FALSE(result.isDatabaseBusy);
        }
    }
    writeFile(defaultDatabasePath(), QByteArray(10000, 'x'));
    EXPECT_EQ(pruneCache({}).databaseError, "file is not a database");
    EXPECT_EQ(pictures(), QStringList("orphan.png"));
}

#ifdef Q_OS_LINUX

TEST_F(CacheCareTest, SourcesThatCannotBeLookedAtKeepTheirRows)
{
    const QString closed = m_folder.filePath("closed");
    ASSERT_TRUE(QDir().mkpath(closed));
    ASSERT_TRUE(QFile::link("loop.stl", m_folder.filePath("loop.stl")));
    const QStringList kept = {closed + "/gone.stl", m_folder.filePath("loop.stl"),
                              m_folder.filePath(QString(300, 'n') + ".stl")};
    for (const QString& path : kept)
        addRow(path, pngPath("a.png"));
    const Unprivileged user({QFileInfo(dataFolder()).path(), m_folder.path()});
    setMode(closed, 0);
    EXPECT_EQ(prune().rows, 0);
    EXPECT_THAT(rows(), ::testing::UnorderedElementsAreArray(kept));
    setMode(closed, 0755);
    EXPECT_EQ(prune().rows, 1);
}

TEST_F(CacheCareTest, LinksAndPipesInTheFolderStay)
{
    const QString outside = source("outside.png");
    moveTimeStamp(outside, -100);
    ASSERT_TRUE(QFile::link(outside, pngPath("link.png")));
    ASSERT_TRUE(QFile::link("/no/such/file", pngPath("loose.png")));
    ASSERT_EQ(mkfifo(QFile::encodeName(pngPath("pipe.png")).constData(), 0600), 0);
    EXPECT_EQ(clear().pictures, 0);
    EXPECT_EQ(pictures(), QStringList({"link.png", "loose.png", "pipe.png"}));
    EXPECT_TRUE(QFileInfo::exists(outside));
}

TEST_F(CacheCareTest, PicturesThatCannotBeRemovedAreCounted)
{
    addRow(m_folder.filePath("gone.stl"), picture("a.png"));
    picture("b.png");
    const QString folder = QDir::cleanPath(thumbnailImageFolder());
    const Unprivileged user({QFileInfo(dataFolder()).path(), m_folder.path()});
    setMode(folder, 0555);
    CareResult result = pruneCache({});
    EXPECT_EQ(result.rows, 1);
    EXPECT_EQ(result.pictures, 0);
    EXPECT_EQ(result.bytes, 0);
    EXPECT_EQ(result.keptPictures, 2);
    EXPECT_TRUE(result.firstKept == pngPath("a.png") || result.firstKept == pngPath("b.png"));
    EXPECT_EQ(result.keptReason, "Permission denied");

    setMode(folder, 0);
    result = pruneCache({});
    EXPECT_TRUE(result.isFolderClosed);
    setMode(folder, 0755);
    EXPECT_EQ(prune().pictures, 2);
}

#endif

} // namespace
} // namespace zr::test
