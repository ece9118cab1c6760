// SPDX-License-Identifier: MIT
#include "request/thumbnail_extractor.h"

#include "core/data_location.h"
#include "core/log_file.h"
#include "readers/reader_table.h"
#include "request/module_path.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/vrx_bytes.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <new>

namespace zr::test
{
namespace
{

samples::VrxParts smallVrx()
{
    samples::VrxParts parts;
    parts.preview.width = 2;
    parts.preview.height = 1;
    parts.preview.data = samples::wordBytes({0, 0xF800});
    return parts;
}

class ThumbnailExtractorTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        ASSERT_TRUE(QDir().mkpath(thumbnailImageFolder()));
    }

    QString source(const QString& name, const QByteArray& bytes = samples::vrxBytes(smallVrx())) const
    {
        return writeFile(m_folder.filePath(name), bytes);
    }

    static QString png(const QString& name) { return thumbnailImageFolder() + name; }

    static QStringList loadLines(const QString& path) { return {"37 in 2 " + path, "63 app after"}; }

    QTemporaryDir m_folder;
};

TEST_F(ThumbnailExtractorTest, LoadMakesThePictureThatExtractReturns)
{
    const QString path = source("a.vrx");
    ThumbnailExtractor extractor;
    EXPECT_EQ(extractor.filePath(), "");
    EXPECT_TRUE(extractor.load(path));
    EXPECT_EQ(extractor.filePath(), path);
    EXPECT_EQ(extractor.extract().convertToFormat(QImage::Format_RGB888), makeReader("vrx", path)->getImage());
    EXPECT_EQ(logMessages(), loadLines(path) + QStringList({"84  throw "}));
}

TEST_F(ThumbnailExtractorTest, RequestsAppendToOneLog)
{
    const QString path = source("a.vrx");
    for (int i = 0; i < 2; ++i) {
        ThumbnailExtractor extractor;
        EXPECT_TRUE(extractor.load(path));
        EXPECT_FALSE(extractor.extract().isNull());
    }
    EXPECT_EQ(logMessages(), loadLines(path) + QStringList({"84  throw "}) + loadLines(path));
}

TEST_F(ThumbnailExtractorTest, ExtractEndsTheLogInstance)
{
    const QString path = source("a.vrx");
    ThumbnailExtractor extractor;
    EXPECT_TRUE(extractor.load(path));
    extractor.extract();
    logLine(1, "lost, since no request has begun");
    EXPECT_EQ(logMessages(), loadLines(path) + QStringList({"84  throw "}));
}

TEST_F(ThumbnailExtractorTest, OnlyRegularFilesMakeAJob)
{
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    createDataFolder();
    for (const QString& path : {m_folder.path(), m_folder.filePath("missing.vrx"), QString()}) {
        restartLog();
        ThumbnailExtractor extractor;
        EXPECT_FALSE(extractor.load(path)) << path.toStdString();
        EXPECT_EQ(logMessages(), loadLines(path));
        EXPECT_FALSE(QFileInfo::exists(thumbnailImageFolder()));
        EXPECT_TRUE(extractor.extract().isNull());
        EXPECT_EQ(extractor.filePath(), "");
    }
}

TEST_F(ThumbnailExtractorTest, FailedLoadForgetsTheFileBefore)
{
    const QString good = source("a.vrx");
    auto hostile = smallVrx();
    hostile.preview.dataSize = -1;
    const QString outOfMemory = source("b.vrx", samples::vrxBytes(hostile));

    ThumbnailExtractor extractor;
    ASSERT_TRUE(extractor.load(good));
    EXPECT_FALSE(extractor.load(source("a.photon")));
    EXPECT_EQ(extractor.filePath(), "");
    EXPECT_TRUE(extractor.extract().isNull());

    ASSERT_TRUE(extractor.load(good));
    EXPECT_THROW(extractor.load(outOfMemory), std::bad_alloc);
    EXPECT_EQ(extractor.filePath(), "");
    EXPECT_TRUE(extractor.extract().isNull());
}

TEST_F(ThumbnailExtractorTest, PictureOutlivesItsSource)
{
    const QString path = source("a.vrx");
    ThumbnailExtractor extractor;
    ASSERT_TRUE(extractor.load(path));
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_FALSE(extractor.extract().isNull());
}

TEST_F(ThumbnailExtractorTest, UnusablePngMakesANullPicture)
{
    const QString path = source("a.vrx");
    const QString cached = png("a.vrxvrx.png");
    ThumbnailExtractor extractor;
    ASSERT_TRUE(extractor.load(path));

    writeFile(cached, "no picture");
    EXPECT_TRUE(extractor.extract().isNull());
    ASSERT_TRUE(QFile::remove(cached));
    EXPECT_TRUE(extractor.extract().isNull());
    ASSERT_TRUE(QDir().mkpath(cached));
    EXPECT_TRUE(extractor.extract().isNull());
}

TEST_F(ThumbnailExtractorTest, ExtractReturnsWhateverPictureTheCacheHolds)
{
    const QString path = source("a.vrx");
    ThumbnailExtractor extractor;
    ASSERT_TRUE(extractor.load(path));
    QImage other(3, 5, QImage::Format_ARGB32);
    other.fill(QColor(1, 2, 3, 4));
    ASSERT_TRUE(other.save(png("a.vrxvrx.png")));
    EXPECT_EQ(extractor.extract().convertToFormat(QImage::Format_ARGB32), other);
    // The content decides about the format, not the name.
    other.fill(qRgb(1, 2, 3));
    ASSERT_TRUE(other.save(png("a.vrxvrx.png"), "BMP"));
    EXPECT_EQ(extractor.extract().pixel(2, 4), qRgb(1, 2, 3));
}

} // namespace
} // namespace zr::test
