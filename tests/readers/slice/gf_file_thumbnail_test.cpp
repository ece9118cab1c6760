// SPDX-License-Identifier: MIT
#include "readers/slice/gf_file_thumbnail.h"

#include "tests/readers/slice/slice_formats.h"
#include "tools/samples/drawn_solids.h"
#include "tools/samples/gf_bytes.h"

#include <random>

namespace zr::test
{
namespace
{

using samples::GfParts;
using samples::PreviewParts;
using samples::wordBytes;

constexpr QRgb kBackground = qRgb(0, 23, 45);

QRgb grey(int value)
{
    return qRgb(value, value, value);
}

// One pixel's channels.
QByteArray pixel(int red, int green, int blue)
{
    return wordBytes({static_cast<quint16>(red), static_cast<quint16>(green), static_cast<quint16>(blue)});
}

PreviewParts preview(int width, int height, const QByteArray& data)
{
    return {width, height, data, {}, {}};
}

QByteArray fileOf(const PreviewParts& previewParts)
{
    GfParts parts;
    parts.preview = previewParts;
    return samples::gfBytes(parts);
}

PreviewParts smallGfPreview()
{
    return preview(2, 2, pixel(0, 0, 0) + pixel(255, 255, 255) + pixel(9, 8, 7) + pixel(1, 2, 3));
}

// The pixel (1, 1) is black, all others are white.
PreviewParts whiteButForTheKey(int width, int height)
{
    const QByteArray white = pixel(255, 255, 255);
    return preview(width, height,
                   white.repeated(width + 1) + pixel(0, 0, 0) + white.repeated(width * height - width - 2));
}

class GfFileThumbnailTest : public SliceReaderTest
{
protected:
    QImage picture(const PreviewParts& parts) { return pictureOf<GfFileThumbnail>(fileOf(parts)); }
};

TEST_F(GfFileThumbnailTest, MaxSideIsFittedAndCentred)
{
    for (const QSize size : {QSize(10000, 1), QSize(1, 10000)}) {
        const QImage solid = samples::drawSolid(samples::Solid::Goblet, size.width(), size.height());
        const PreviewParts parts = samples::channelWordPreview(solid);
        EXPECT_EQ(picture(parts), channelPicture(parts)) << size.width() << " x " << size.height();
    }
}

TEST_F(GfFileThumbnailTest, MarginsOfWideAndTallPreviews)
{
    const QImage wide = picture(whiteButForTheKey(200, 100));
    EXPECT_EQ(wide.pixel(399, 99), kBackground);
    EXPECT_EQ(wide.pixel(399, 100), grey(255));
    EXPECT_EQ(wide.pixel(399, 299), grey(255));
    EXPECT_EQ(wide.pixel(399, 300), kBackground);

    const QImage tall = picture(whiteButForTheKey(100, 400));
    EXPECT_EQ(tall.pixel(149, 399), kBackground);
    EXPECT_EQ(tall.pixel(150, 399), grey(255));
    EXPECT_EQ(tall.pixel(249, 399), grey(255));
    EXPECT_EQ(tall.pixel(250, 399), kBackground);
    EXPECT_EQ(tall.pixel(151, 1), kBackground); // the key
}

TEST_F(GfFileThumbnailTest, Shades)
{
    const QImage result = picture(smallGfPreview());
    EXPECT_EQ(result.pixel(0, 0), grey(127));
    EXPECT_EQ(result.pixel(200, 0), grey(255));
    EXPECT_EQ(result.pixel(0, 200), grey(131)); // luminance 8
    EXPECT_EQ(result.pixel(200, 200), kBackground);
}

TEST_F(GfFileThumbnailTest, KeyIsTheHeightBeforePixelOneOneAndThatPixelAfterIt)
{
    // 3 x 3: the height's triple in the first row and in (0, 1), then the key at (1, 1), then both again.
    const QByteArray height = pixel(3, 3, 3);
    const QByteArray key = pixel(10, 20, 30);
    const QImage result = picture(preview(3, 3, height + key + height + height + key + key + height + key + height));
    const QRgb heightShade = grey(128); // luminance 3
    const QRgb keyShade = grey(136);    // luminance 18
    const QRgb expected[3][3] = {
        {kBackground, keyShade, kBackground},
        {kBackground, kBackground, kBackground},
        {heightShade, kBackground, heightShade},
    };
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(result.pixel(x * 133 + 60, y * 133 + 60), expected[y][x]) << x << ", " << y;
    }
}

TEST_F(GfFileThumbnailTest, EachChannelOfTheKeyCounts)
{
    const QByteArray key = pixel(10, 20, 30);
    const QByteArray others = pixel(11, 20, 30) + pixel(10, 21, 30) + pixel(10, 20, 31) + pixel(10, 20, 30 + 256);
    const QImage result = picture(preview(4, 3, key.repeated(8) + others));
    for (int x = 0; x < 4; ++x)
        EXPECT_NE(result.pixel(x * 100 + 50, 300), kBackground) << x;
}

TEST_F(GfFileThumbnailTest, OnePixelWidePreviewKeepsTheHeightAsKey)
{
    const QImage result = picture(preview(1, 4, pixel(4, 4, 4) + pixel(5, 4, 4) + pixel(4, 4, 4) + pixel(0, 0, 0)));
    EXPECT_EQ(result.pixel(200, 50), kBackground);
    EXPECT_EQ(result.pixel(200, 150), grey(129));
    EXPECT_EQ(result.pixel(200, 250), kBackground);
    EXPECT_EQ(result.pixel(200, 350), grey(127));
}

TEST_F(GfFileThumbnailTest, HeightAbove255IsAKeyOf16Bits)
{
    const PreviewParts tall = preview(
        1, 300, pixel(300, 300, 300).repeated(2) + pixel(44, 44, 44).repeated(2) + pixel(9, 9, 9).repeated(296));
    const QImage result = picture(tall);
    EXPECT_EQ(result, channelPicture(tall));
    EXPECT_EQ(result.pixel(199, 0), kBackground);
    EXPECT_EQ(result.pixel(199, 4), grey(149)); // luminance 44
}

TEST_F(GfFileThumbnailTest, ChannelsAbove255WrapAround)
{
    const QByteArray first = pixel(256, 256, 256) + pixel(511, 511, 511) + pixel(0xFFFF, 0xFFFF, 0xFFFF);
    const QImage result = picture(preview(3, 1, first));
    EXPECT_EQ(result.pixel(60, 200), grey(255));            // 255.5 truncated
    EXPECT_EQ(result.pixel(200, 200), grey(127));           // 383
    EXPECT_EQ(result.pixel(340, 200), grey(0x80FF & 0xFF)); // 33023
}

TEST_F(GfFileThumbnailTest, RandomChannelsEqualTheOracle)
{
    std::mt19937 random(7);
    for (const QSize size : {QSize(50, 40), QSize(16, 400), QSize(2, 2)}) {
        PreviewParts parts = preview(size.width(), size.height(), QByteArray());
        for (int i = 0; i < size.width() * size.height() * 3; ++i)
            parts.data += wordBytes({static_cast<quint16>(random() % 3 ? random() : random() % 2)});
        EXPECT_EQ(picture(parts), channelPicture(parts));
    }
}

TEST_F(GfFileThumbnailTest, MissingPixelsAreBackground)
{
    const PreviewParts complete = smallGfPreview();
    for (int bytes = 0; bytes <= complete.data.size(); ++bytes) {
        PreviewParts shorter = complete;
        shorter.data.truncate(bytes);
        shorter.dataOffset = 216 + samples::kPreviewHeadBytes;
        // With no data at all its place would lie at the end of the file.
        const QImage result = pictureOf<GfFileThumbnail>(fileOf(shorter) + QByteArray(1, '\x55'));
        EXPECT_EQ(result, channelPicture(shorter)) << bytes;
        EXPECT_EQ(result.pixel(200, 0) == kBackground, bytes < 12);
    }
}

TEST_F(GfFileThumbnailTest, SurplusDataIsNotRead)
{
    PreviewParts longer = smallGfPreview();
    longer.data += pixel(1, 1, 1);
    EXPECT_EQ(picture(longer), channelPicture(smallGfPreview()));
}

} // namespace
} // namespace zr::test
