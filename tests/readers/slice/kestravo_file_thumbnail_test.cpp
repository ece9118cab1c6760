// SPDX-License-Identifier: MIT
#include "readers/slice/kestravo_file_thumbnail.h"

#include "tests/readers/slice/slice_formats.h"
#include "tools/samples/kestravo_bytes.h"

namespace zr::test
{
namespace
{

using samples::KestravoParts;
using samples::PreviewParts;
using samples::wordBytes;

constexpr QRgb kBackground = qRgb(147, 147, 147);

KestravoParts smallParts()
{
    KestravoParts parts;
    parts.preview = smallPreview();
    return parts;
}

// All pixels but the first in one colour.
PreviewParts plainPreview(int width, int height)
{
    constexpr int kRunPixels = 4096;
    PreviewParts preview;
    preview.width = width;
    preview.height = height;
    const int pixels = width * height - 1;
    preview.data = wordBytes({0x0001}) + wordBytes({0xF820, 0x0FFF}).repeated(pixels / kRunPixels) +
                   wordBytes({0xF820, static_cast<quint16>(pixels % kRunPixels - 1)});
    return preview;
}

// Where the pixels lie that are not background.
QRect paintedRect(const QImage& picture)
{
    QRect rect;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixel(x, y) != kBackground)
                rect |= QRect(x, y, 1, 1);
        }
    }
    return rect;
}

using KestravoFileThumbnailTest = SliceReaderTest;

TEST_F(KestravoFileThumbnailTest, SmallPreviewsAreCentredAndLargeOnesAreNotScaled)
{
    struct {
        QSize preview;
        int side;
        QRect painted;
    } const cases[] = {
        {{200, 120}, 400, {100, 140, 200, 120}}, {{640, 480}, 640, {0, 80, 640, 480}},
        {{399, 400}, 400, {0, 0, 399, 400}},     {{397, 2}, 400, {1, 199, 397, 2}},
        {{400, 401}, 401, {0, 0, 400, 401}},     {{2, 401}, 401, {199, 0, 2, 401}},
    };
    for (const auto& size : cases) {
        KestravoParts parts;
        parts.preview = plainPreview(size.preview.width(), size.preview.height());
        const QImage picture = pictureOf<KestravoFileThumbnail>(samples::kestravoBytes(parts));
        EXPECT_EQ(picture.size(), QSize(size.side, size.side));
        EXPECT_EQ(paintedRect(picture), size.painted) << size.preview.width();
        EXPECT_EQ(picture.pixel(size.painted.topLeft()), kBackground);
    }
}

TEST_F(KestravoFileThumbnailTest, FirstWordIsBackgroundWhateverItsColour)
{
    for (const int word : {0x0000, 0xFFDF, 0xF800}) {
        KestravoParts parts = smallParts();
        parts.preview.data = wordBytes({static_cast<quint16>(word), 0x0000, 0xF800});
        const QImage picture = pictureOf<KestravoFileThumbnail>(samples::kestravoBytes(parts));
        EXPECT_EQ(picture.pixel(198, 199), kBackground);
        EXPECT_EQ(picture.pixel(199, 199), word == 0x0000 ? kBackground : qRgb(0, 107, 163));
        EXPECT_EQ(picture.pixel(200, 199), word == 0xF800 ? kBackground : qRgb(17, 124, 180));
    }
}

TEST_F(KestravoFileThumbnailTest, OffsetZeroMeansNoPreview)
{
    KestravoParts parts = smallParts();
    parts.thumbnailOffset = 0;
    expectFailure(make<KestravoFileThumbnail>, samples::kestravoBytes(parts),
                  {33, "thumbnail offset is zero", "filePrevErr", Failure::Path::Appended});
}

TEST_F(KestravoFileThumbnailTest, PreviewHeaderThatANegativeOffsetLeadsToMayBeCut)
{
    KestravoParts parts = smallParts();
    parts.thumbnailOffset = -1;
    expectFailure(make<KestravoFileThumbnail>, samples::kestravoBytes(parts).left(412 + 31),
                  {50, "svgx file head read less", "fileReadLess"});
}

// Whatever else is wrong with the preview.
TEST_F(KestravoFileThumbnailTest, DataOffsetZeroIsRefusedFirst)
{
    const Failure failure{56, "prev offset is unlawful", "filePrevErr"};
    KestravoParts parts = smallParts();
    parts.preview.dataOffset = 0;
    expectFailure(make<KestravoFileThumbnail>, samples::kestravoBytes(parts), failure);
    parts.preview.dataSize = -1;
    parts.preview.width = 0;
    expectFailure(make<KestravoFileThumbnail>, samples::kestravoBytes(parts), failure);
}

} // namespace
} // namespace zr::test
