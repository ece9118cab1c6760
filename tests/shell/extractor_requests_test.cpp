// SPDX-License-Identifier: MIT
// Requests as the file browser makes them: Load, then Extract.

#include "core/data_location.h"
#include "tests/shell/server_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"
#include "tools/samples/vrx_bytes.h"

#include <QDir>
#include <QFileInfo>

namespace zr::test
{
namespace
{

class ExtractorRequestsTest : public ServerTest
{
protected:
    QString writeSample(const QString& name) const { return writeSource(name, sampleBytes("rook.vrx")); }

    // The raw pixels of the 32-bit bitmap that Extract returns for this cached picture.
    std::vector<quint32> bitsFor(const QImage& cached)
    {
        const QString source = writeSample("a.vrx");
        const auto object = m_server.make<IPersistFile>();
        EXPECT_EQ(load(object, source), S_OK);
        EXPECT_TRUE(cached.save(thumbnailImageFolder() + "a.vrxvrx.png"));
        ComPtr<IExtractImage> extractor;
        EXPECT_EQ(object.As(&extractor), S_OK);
        HBITMAP bitmap = nullptr;
        EXPECT_EQ(extractor->Extract(&bitmap), S_OK);
        DIBSECTION section = {};
        EXPECT_EQ(GetObjectW(bitmap, sizeof section, &section), static_cast<int>(sizeof section));
        EXPECT_EQ(section.dsBm.bmBitsPixel, 32);
        EXPECT_EQ(section.dsBm.bmWidth, cached.width());
        EXPECT_EQ(section.dsBm.bmHeight, cached.height());
        EXPECT_EQ(section.dsBm.bmWidthBytes, cached.width() * 4);
        const auto* const bits = static_cast<const quint32*>(section.dsBm.bmBits);
        const std::ptrdiff_t count = std::ptrdiff_t{cached.width()} * cached.height();
        std::vector<quint32> copy(bits, bits + count);
        DeleteObject(bitmap);
        return copy;
    }
};

QString cachedPng(const QString& source)
{
    const QFileInfo file(source);
    return thumbnailImageFolder() + file.fileName() + file.suffix() + ".png";
}

TEST_F(ExtractorRequestsTest, EverySampleGetsItsCachedPicture)
{
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        SCOPED_TRACE(sample.name);
        const QString source = writeSource(QString::fromLatin1(sample.name), sample.make());
        const QImage picture = request(source);
        const QImage cached(cachedPng(source));
        EXPECT_FALSE(cached.isNull());
        EXPECT_EQ(picture, cached.convertToFormat(QImage::Format_ARGB32));
        EXPECT_EQ(request(source), picture) << "from the cache";
    }
}

TEST_F(ExtractorRequestsTest, BitmapKeepsColoursAlphaAndRowOrder)
{
    QImage cached(2, 3, QImage::Format_ARGB32);
    const std::vector<quint32> pixels = {0xFF102030, 0x80FF4000, 0x00123456, 0x01FFFFFF, 0xFE000000, 0xFFFFFFFF};
    for (int i = 0; i < 6; ++i)
        cached.setPixel(i % 2, i / 2, pixels[static_cast<std::size_t>(i)]);
    EXPECT_EQ(bitsFor(cached), pixels);
}

TEST_F(ExtractorRequestsTest, PicturesOfFewColoursBecomeOpaqueBitmapsOfFullDepth)
{
    QImage indexed(2, 1, QImage::Format_Indexed8);
    indexed.setColorTable({0xFFAA0000, 0xFF00BB00});
    indexed.setPixel(0, 0, 0);
    indexed.setPixel(1, 0, 1);
    EXPECT_EQ(bitsFor(indexed), std::vector<quint32>({0xFFAA0000, 0xFF00BB00}));

    QImage grey(2, 1, QImage::Format_Grayscale8);
    grey.setPixel(0, 0, 0xFF404040);
    grey.setPixel(1, 0, 0xFFC0C0C0);
    EXPECT_EQ(bitsFor(grey), std::vector<quint32>({0xFF404040, 0xFFC0C0C0}));

    QImage opaque(1, 1, QImage::Format_RGB32);
    opaque.setPixel(0, 0, 0x00112233);
    EXPECT_EQ(bitsFor(opaque), std::vector<quint32>({0xFF112233}));
}

// The preview claims an impossible size, so the reader fails with an exception of the standard library.
TEST_F(ExtractorRequestsTest, ErrorOfTheStandardLibraryStaysInside)
{
    samples::VrxParts hostile;
    hostile.preview.width = 1;
    hostile.preview.height = 1;
    hostile.preview.dataSize = -1;
    const auto object = m_server.make<IPersistFile>();
    EXPECT_EQ(load(object, writeSource("hostile.vrx", samples::vrxBytes(hostile))), S_FALSE);
    EXPECT_FALSE(logMessages().contains("73 getImage False")) << "the job does not catch it";
    EXPECT_TRUE(extract(object).isNull());
    EXPECT_FALSE(request(writeSample("good.vrx")).isNull());
}

struct PathRow {
    const char* name;
    QString path;
};

TEST_F(ExtractorRequestsTest, PathsMayContainAnyLetters)
{
    const QString longName = QString("segment-of-a-long-path/").repeated(20);
    const PathRow rows[] = {
        {"blanks", "my prints/a b  c.vrx"},
        {"letters", QString::fromUtf8("M\u00f6belst\u00fcck/\u0141\u00f3d\u017a \u65e5\u672c\u8a9e.vrx")},
        {"signs", "50% & more; [1] (2) #3 {4} +=,~.vrx"},
        {"capitals", "PART.VRX"},
        {"dots", "a.b.c.vrxdlp"},
        {"long", longName + "a.vrx"},
    };
    for (const PathRow& row : rows) {
        SCOPED_TRACE(row.name);
        restartLog();
        const QString source = writeSample(row.path);
        EXPECT_EQ(request(source).size(), QSize(400, 400));
        EXPECT_EQ(logMessages().mid(0, 1), QStringList("37 in 2 " + inCodePage(source)));
        EXPECT_TRUE(QFileInfo::exists(cachedPng(source)));
    }
    EXPECT_GT(m_folder.filePath(longName).size(), 260);
}

// The cache's statements are built as text.
TEST_F(ExtractorRequestsTest, PathsWithApostrophesGetNoThumbnail)
{
    const auto object = m_server.make<IPersistFile>();
    EXPECT_EQ(load(object, writeSample("it's.vrx")), S_FALSE);
    EXPECT_TRUE(extract(object).isNull());
}

struct RefusalRow {
    const char* name;
    QString path;
    QStringList messages;
};

TEST_F(ExtractorRequestsTest, UnsupportedFilesAreRefused)
{
    request(writeSample("a.vrx"));
    const QString text = writeSource("a.txt", "text");
    const QString photon = writeSource("a.photon", "photon");
    const QString bare = writeSource("vrx", "no suffix");
    const QString damaged = writeSource("short.vrx", "x");
    const QString folder = QDir::toNativeSeparators(m_folder.path());
    const QStringList unsupported = {"84  throw ", "60  throw ", "73 getImage False"};
    const RefusalRow rows[] = {
        {"a folder", folder, {}},
        {"a missing file", folder + "\\missing.vrx", {}},
        {"nothing", QString(), {}},
        {"a text file", text, unsupported},
        {"a suffix that is registered only", photon, unsupported},
        {"no suffix", bare, unsupported},
    };
    for (const RefusalRow& row : rows) {
        SCOPED_TRACE(row.name);
        restartLog();
        const auto object = m_server.make<IPersistFile>();
        EXPECT_EQ(load(object, row.path), S_FALSE);
        EXPECT_EQ(logMessages(), QStringList({"37 in 2 " + row.path, "63 app after"}) + row.messages);
        EXPECT_TRUE(extract(object).isNull());
    }
    const auto object = m_server.make<IPersistFile>();
    EXPECT_EQ(load(object, damaged), S_FALSE);
    EXPECT_EQ(logMessages().last(), "73 getImage False");
    EXPECT_TRUE(extract(object).isNull());
    EXPECT_EQ(object->Load(nullptr, STGM_READ), S_FALSE);
    EXPECT_TRUE(extract(object).isNull());
}

TEST_F(ExtractorRequestsTest, LogShowsEachRequest)
{
    const QString source = writeSample("a.vrx");
    request(source);
    EXPECT_TRUE(logMessages().contains("84  throw "));
    restartLog();
    for (int i = 0; i < 3; ++i)
        request(source);
    const QStringList hit = {"37 in 2 " + source, "63 app after"};
    EXPECT_EQ(logMessages(), hit + hit + hit);
}

TEST_F(ExtractorRequestsTest, ExtractReturnsWhatTheCacheHolds)
{
    const QString source = writeSample("a.vrx");
    const auto object = m_server.make<IPersistFile>();
    ASSERT_EQ(load(object, source), S_OK);
    const QImage picture = extract(object);
    EXPECT_EQ(picture.size(), QSize(400, 400));
    EXPECT_EQ(extract(object), picture) << "again";
    ASSERT_TRUE(QFile::remove(source));
    EXPECT_EQ(extract(object), picture) << "the source is gone";
    writeFile(cachedPng(source), "no picture");
    EXPECT_TRUE(extract(object).isNull()) << "the cached picture is damaged";
    ASSERT_TRUE(QFile::remove(cachedPng(source)));
    EXPECT_TRUE(extract(object).isNull()) << "the cached picture is gone";
    ASSERT_TRUE(QDir().mkdir(cachedPng(source)));
    EXPECT_TRUE(extract(object).isNull()) << "a folder is in its place";
}

TEST_F(ExtractorRequestsTest, ExtractNeedsASuccessfulLoad)
{
    const QString source = writeSample("a.vrx");
    EXPECT_FALSE(request(source).isNull());
    const auto object = m_server.make<IPersistFile>();
    EXPECT_TRUE(extract(object).isNull()) << "before any Load";
    ASSERT_EQ(load(object, source), S_OK);
    ASSERT_EQ(load(object, m_folder.filePath("missing.vrx")), S_FALSE);
    EXPECT_TRUE(extract(object).isNull()) << "after a failed Load";
    ASSERT_EQ(load(object, source), S_OK);
    EXPECT_FALSE(extract(object).isNull());
}

TEST_F(ExtractorRequestsTest, ExtractWithoutAnOutPointerEndsTheRequest)
{
    const auto extractor = m_server.make<IExtractImage>();
    ComPtr<IPersistFile> file;
    ASSERT_EQ(extractor.As(&file), S_OK);
    ASSERT_EQ(load(file, writeSample("a.vrx")), S_OK);
    EXPECT_EQ(extractor->Extract(nullptr), S_OK);
    EXPECT_TRUE(QFile::remove(defaultLogPath())) << "the log is closed";
}

TEST_F(ExtractorRequestsTest, ObjectsKeepTheirFilesApart)
{
    const QString wide = writeSource("wide.vrx", sampleBytes("rook-wide.vrx"));
    const QString plain = writeSample("plain.vrx");
    const auto first = m_server.make<IPersistFile>();
    const auto second = m_server.make<IPersistFile>();
    ASSERT_EQ(load(first, wide), S_OK);
    ASSERT_EQ(load(second, plain), S_OK);
    EXPECT_EQ(extract(first), QImage(cachedPng(wide)).convertToFormat(QImage::Format_ARGB32));
    EXPECT_EQ(extract(second), QImage(cachedPng(plain)).convertToFormat(QImage::Format_ARGB32));
}

quint64 ticks(const FILETIME& time)
{
    return quint64{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

TEST_F(ExtractorRequestsTest, DateStampIsTheTimeOfLastWrite)
{
    const QString source = writeSample("a.vrx");
    const auto object = m_server.make<IExtractImage2>();
    ComPtr<IPersistFile> file;
    ASSERT_EQ(object.As(&file), S_OK);
    ASSERT_EQ(load(file, source), S_OK);
    for (const qint64 seconds : {0, -1000, 2000}) {
        moveTimeStamp(source, seconds);
        WIN32_FILE_ATTRIBUTE_DATA attributes = {};
        ASSERT_TRUE(
            GetFileAttributesExW(reinterpret_cast<LPCWSTR>(source.utf16()), GetFileExInfoStandard, &attributes));
        FILETIME stamp = {1, 1};
        EXPECT_EQ(object->GetDateStamp(&stamp), S_OK);
        EXPECT_EQ(ticks(stamp), ticks(attributes.ftLastWriteTime));
        EXPECT_GT(ticks(stamp), 0U);
    }
    EXPECT_EQ(object->GetDateStamp(nullptr), E_FAIL);
}

TEST_F(ExtractorRequestsTest, DateStampIsZeroWithoutAFile)
{
    const QString source = writeSample("a.vrx");
    const auto object = m_server.make<IExtractImage2>();
    const auto expectZero = [&object](const char* when) {
        FILETIME stamp = {1, 1};
        EXPECT_EQ(object->GetDateStamp(&stamp), S_OK) << when;
        EXPECT_EQ(ticks(stamp), 0U) << when;
    };
    expectZero("before any Load");
    ComPtr<IPersistFile> file;
    ASSERT_EQ(object.As(&file), S_OK);
    ASSERT_EQ(load(file, source), S_OK);
    ASSERT_TRUE(QFile::remove(source));
    expectZero("when the file is gone");
    ASSERT_EQ(load(file, source), S_FALSE);
    expectZero("after a failed Load");
}

} // namespace
} // namespace zr::test
