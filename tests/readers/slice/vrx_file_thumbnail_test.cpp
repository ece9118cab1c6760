// SPDX-License-Identifier: MIT
#include "readers/slice/vrx_file_thumbnail.h"

#include "tests/readers/slice/slice_formats.h"
#include "tools/samples/put_bytes.h"
#include "tools/samples/vrx_bytes.h"

#ifdef Q_OS_LINUX
#include <unistd.h>
#endif

namespace zr::test
{
namespace
{

using samples::VrxParts;
using samples::wordBytes;
using Layout = VrxParts::Layout;

using VrxFileThumbnailTest = SliceReaderTest;

VrxParts smallParts(Layout layout)
{
    VrxParts parts;
    parts.layout = layout;
    parts.preview = smallPreview();
    return parts;
}

QByteArray valid(Layout layout)
{
    return samples::vrxBytes(smallParts(layout));
}

TEST_F(VrxFileThumbnailTest, MarginsOfAWidePreviewAreBackground)
{
    // One pixel of the key colour, all others of another one.
    VrxParts parts;
    parts.preview.width = 250;
    parts.preview.height = 150;
    parts.preview.data = wordBytes({0x0000}) + wordBytes({0xF820, 0x0FFF}).repeated(9) + wordBytes({0xF820, 634});
    const QImage picture = pictureOf<VrxFileThumbnail>(samples::vrxBytes(parts));
    // Rows 50 to 199 of the canvas of 250 become rows 80 to 319.
    EXPECT_EQ(picture.pixel(399, 79), qRgb(0, 23, 45));
    EXPECT_EQ(picture.pixel(399, 80), qRgb(172, 172, 172));
    EXPECT_EQ(picture.pixel(399, 319), qRgb(172, 172, 172));
    EXPECT_EQ(picture.pixel(399, 320), qRgb(0, 23, 45));
}

TEST_F(VrxFileThumbnailTest, AnyOtherFirstWordMeansOffsetsInTheHeader)
{
    for (const quint32 magic : {0U, 1U, 0x0701FD12U, 0x12FD0106U, 0x12FD0108U, 0xFFFFFFFFU}) {
        VrxParts parts = smallParts(Layout::Dlp);
        parts.dlpMagic = magic;
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(samples::vrxBytes(parts)), darkPicture(smallPreview())) << magic;
    }
}

TEST_F(VrxFileThumbnailTest, AnyNonZeroLayoutFlagMeansTheLaterPlace)
{
    for (const int flag : {1, 0x0100, 0x8000, 0xFFFF}) {
        QByteArray bytes = valid(Layout::PreviewAt336);
        samples::putLittleEndian(bytes, 34, static_cast<quint16>(flag));
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), darkPicture(smallPreview())) << flag;
    }
}

TEST_F(VrxFileThumbnailTest, OffsetFieldsDoNotMatterInTheLayoutWithFixedPlaces)
{
    QByteArray bytes = valid(Layout::PreviewAt328);
    samples::putLittleEndian<qint32>(bytes, 60, 0x7FFFFFFF);
    samples::putLittleEndian<qint32>(bytes, 72, 0x7FFFFFFF);
    EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), darkPicture(smallPreview()));
}

TEST_F(VrxFileThumbnailTest, MaxSideIsAccepted)
{
    for (const QSize size : {QSize(10000, 1), QSize(1, 10000)}) {
        VrxParts parts = smallParts(Layout::Dlp);
        parts.preview.width = size.width();
        parts.preview.height = size.height();
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(samples::vrxBytes(parts)), darkPicture(parts.preview));
    }
}

#ifdef Q_OS_LINUX
// Of an ordinary file the second header is a part of the first one, which has been read already; a pipe runs dry.
TEST_F(VrxFileThumbnailTest, SecondHeaderShort)
{
    QByteArray bytes = valid(Layout::PreviewAt328).left(112 + 39);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
    ::close(ends[1]);

    restartLog();
    VrxFileThumbnail reader(path());
    ASSERT_TRUE(fileIn(reader).open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle));
    EXPECT_TRUE(reader.getImage().isNull());
    EXPECT_FALSE(fileIn(reader).isOpen());
    // A file that is opened by its descriptor keeps the name it was given.
    EXPECT_EQ(logMessages(), failureLines(43, "VrxFileHeader_t read less\n" + path()) << "29 fileReadLess");
}
#endif

} // namespace
} // namespace zr::test
