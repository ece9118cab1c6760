// SPDX-License-Identifier: MIT
#include "cache/shared_pictures.h"

#include "cache/thumbnail_database.h"
#include "core/data_location.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QFileInfo>

namespace zr::test
{
namespace
{

constexpr quint64 kSize = 7;

class SharedPicturesTest : public DataFolderTest
{
protected:
    static void addRow(const QString& filePath, const QString& thumPath)
    {
        ThumbnailRecord record;
        record.filePath = filePath;
        record.thumPath = thumPath;
        record.fileSize = kSize;
        ThumbnailDatabase database{QString()};
        EXPECT_TRUE(database.insertRecord(record));
    }

    static bool isStale(const QString& filePath)
    {
        const ThumbnailDatabase database{QString()};
        return database.queryValue(filePath, QStringLiteral("fileSize")).toULongLong() != kSize;
    }
};

TEST_F(SharedPicturesTest, OnlyRowsThatShareTheirPngBecomeStale)
{
    createDataFolder();
    addRow("/a/part.stl", "/i/part.png");
    addRow("/b/part.stl", "/i/part.png");
    addRow("/c/Part.stl", "/i/Part.png");
    addRow("/d/other.stl", "/i/other.png");
    const SharedPictures pictures;
    for (const char* const path : {"/a/part.stl", "/d/other.stl", "/e/unknown.stl", "/e/o'brien.stl"})
        pictures.prepare(path, false);
    EXPECT_TRUE(isStale("/a/part.stl"));
    EXPECT_FALSE(isStale("/b/part.stl"));
    EXPECT_FALSE(isStale("/d/other.stl"));
    // In a case-insensitive file system these two are one file.
    pictures.prepare("/c/Part.stl", false);
    EXPECT_TRUE(isStale("/c/Part.stl"));
}

// Requests for other files of its name may put their pictures into its PNG, also if they have no rows yet.
TEST_F(SharedPicturesTest, RowOfARepeatedNameBecomesStale)
{
    createDataFolder();
    addRow("/b/part.stl", "/i/part.png");
    addRow("/d/other.stl", "/i/other.png");
    const SharedPictures pictures;
    pictures.prepare("/b/part.stl", false);
    EXPECT_FALSE(isStale("/b/part.stl"));
    pictures.prepare("/e/unknown.stl", true);
    pictures.prepare("/b/part.stl", true);
    EXPECT_TRUE(isStale("/b/part.stl"));
    EXPECT_FALSE(isStale("/d/other.stl"));
}

TEST_F(SharedPicturesTest, MissingCacheIsNotCreated)
{
    SharedPictures().prepare("/a/part.stl", true);
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));
    createDataFolder();
    SharedPictures().prepare("/a/part.stl", true);
    EXPECT_FALSE(QFileInfo::exists(defaultDatabasePath()));
    const QByteArray garbage(4096, 'x');
    writeFile(defaultDatabasePath(), garbage);
    SharedPictures().prepare("/a/part.stl", true);
    EXPECT_EQ(readFile(defaultDatabasePath()), garbage);
}

} // namespace
} // namespace zr::test
