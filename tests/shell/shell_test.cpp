// SPDX-License-Identifier: MIT
// The path that the file browser takes: the folder's IExtractImage for a file, which the registry leads to.

#include "host/bitmap_to_image.h"
#include "tests/shell/server_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QFileInfo>

#include "core/data_location.h"

#include <shlobj.h>

namespace zr::test
{
namespace
{

class ShellTest : public ServerTest
{
protected:
    // What the file's folder offers; null if it has no thumbnails for such files.
    static ComPtr<IExtractImage> extractorOf(const QString& path)
    {
        PIDLIST_ABSOLUTE item = nullptr;
        EXPECT_EQ(SHParseDisplayName(reinterpret_cast<LPCWSTR>(path.utf16()), nullptr, &item, 0, nullptr), S_OK);
        ComPtr<IShellFolder> folder;
        PCUITEMID_CHILD child = nullptr;
        EXPECT_EQ(SHBindToParent(item, IID_PPV_ARGS(folder.GetAddressOf()), &child), S_OK);
        ComPtr<IExtractImage> extractor;
        void** const answer = reinterpret_cast<void**>(extractor.GetAddressOf());
        folder->GetUIObjectOf(nullptr, 1, &child, __uuidof(IExtractImage), nullptr, answer);
        CoTaskMemFree(item);
        return extractor;
    }

    static QImage pictureOf(const ComPtr<IExtractImage>& extractor)
    {
        wchar_t location[MAX_PATH] = {};
        DWORD priority = 0;
        const SIZE size = {256, 256};
        DWORD flags = IEIFLAG_SCREEN;
        EXPECT_EQ(extractor->GetLocation(location, MAX_PATH, &priority, &size, 32, &flags), S_OK);
        HBITMAP bitmap = nullptr;
        EXPECT_EQ(extractor->Extract(&bitmap), S_OK);
        if (!bitmap)
            return {};
        QImage image = bitmapToImage(bitmap);
        DeleteObject(bitmap);
        return image;
    }
};

TEST_F(ShellTest, EverySampleHasAPicture)
{
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        SCOPED_TRACE(sample.name);
        restartLog();
        const QString source = writeSource(QString::fromLatin1(sample.name), sample.make());
        const auto extractor = extractorOf(source);
        ASSERT_TRUE(extractor);
        EXPECT_EQ(logMessages().mid(0, 1), QStringList("37 in 2 " + source));
        const QImage picture = pictureOf(extractor);
        const QFileInfo file(source);
        const QImage cached(thumbnailImageFolder() + file.fileName() + file.suffix() + ".png");
        EXPECT_FALSE(cached.isNull());
        EXPECT_EQ(picture, cached.convertToFormat(QImage::Format_ARGB32));
    }
}

TEST_F(ShellTest, ChangedFileHasANewPicture)
{
    const QString source = writeSource("a.vrx", sampleBytes("rook.vrx"));
    const QImage before = pictureOf(extractorOf(source));
    writeSource("a.vrx", sampleBytes("rook-wide.vrx"));
    const QImage after = pictureOf(extractorOf(source));
    EXPECT_FALSE(after.isNull());
    EXPECT_NE(before, after);
}

TEST_F(ShellTest, DateStampIsOffered)
{
    const auto extractor = extractorOf(writeSource("a.vrx", sampleBytes("rook.vrx")));
    ASSERT_TRUE(extractor);
    ComPtr<IExtractImage2> stamped;
    ASSERT_EQ(extractor.As(&stamped), S_OK);
    FILETIME stamp = {};
    EXPECT_EQ(stamped->GetDateStamp(&stamp), S_OK);
    EXPECT_NE(stamp.dwHighDateTime, 0U);
    EXPECT_FALSE(pictureOf(extractor).isNull());
}

TEST_F(ShellTest, OtherFilesAreNotRequested)
{
    EXPECT_FALSE(extractorOf(writeSource("a.txt", "text")));
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(ShellTest, DamagedFileHasNoPicture)
{
    const QString source = writeSource("short.vrx", "x");
    const auto extractor = extractorOf(source);
    EXPECT_EQ(logMessages().last(), "73 getImage False");
    if (extractor) {
        EXPECT_TRUE(pictureOf(extractor).isNull());
    }
}

} // namespace
} // namespace zr::test
