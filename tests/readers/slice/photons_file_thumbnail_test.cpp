// SPDX-License-Identifier: MIT
#include "readers/slice/photons_file_thumbnail.h"

#include "tests/readers/slice/preview_oracle.h"
#include "tests/readers/slice/slice_reader_test.h"
#include "tools/samples/drawn_solids.h"
#include "tools/samples/photons_bytes.h"
#include "tools/samples/preview_bytes.h"

#include <limits>

namespace zr::test
{
namespace
{

using samples::PhotonsParts;
using samples::wordBytes;

constexpr int kMinInt = std::numeric_limits<int>::min();
constexpr int kMaxInt = std::numeric_limits<int>::max();

// The colour that a version text of three bytes gives to pictures without a pixel (1, 1).
constexpr QRgb kFallback = qRgb(0, 0, 0);

PhotonsParts withPixels(qint32 width, qint32 height, const QByteArray& pixels)
{
    PhotonsParts parts;
    parts.width = width;
    parts.height = height;
    parts.pixels = pixels;
    return parts;
}

QByteArray fileOf(qint32 width, qint32 height, const QByteArray& pixels)
{
    return samples::photonsBytes(withPixels(width, height, pixels));
}

QByteArray valid()
{
    return fileOf(2, 2, wordBytes({0xF800, 0x001F, 0x07E0, 0x8410}));
}

// Each pixel once more, from the format's bit fields.
QImage oracle(const PhotonsParts& parts, QRgb fallback)
{
    QImage picture(parts.width, parts.height, QImage::Format_RGB32);
    QRgb margin = fallback;
    for (int y = 0; y < parts.height; ++y) {
        for (int x = 0; x < parts.width; ++x) {
            const int at = 2 * (y * parts.width + x);
            const int bits =
                static_cast<uchar>(parts.pixels.at(at)) + 256 * static_cast<uchar>(parts.pixels.at(at + 1));
            const QRgb colour = qRgb(bits % 32 * 8, bits / 32 % 64 * 4, bits / 2048 * 8);
            picture.setPixel(x, y, colour);
            if (x == 1 && y == 1)
                margin = colour;
        }
    }
    return centredOnSquare(scaledTo400(picture), margin);
}

QImage plain(QRgb colour)
{
    QImage picture(400, 400, QImage::Format_RGB888);
    picture.fill(colour);
    return picture;
}

class PhotonsFileThumbnailTest : public SliceReaderTest
{
protected:
    QImage picture(const QByteArray& bytes) { return pictureOf<PhotonsFileThumbnail>(bytes); }
};

TEST_F(PhotonsFileThumbnailTest, PictureIsFittedAndCentredInItsOwnColours)
{
    for (const QSize size :
         {QSize(200, 100), QSize(100, 200), QSize(400, 400), QSize(1, 9), QSize(9, 1), QSize(1, 1), QSize(2, 2),
          QSize(401, 399), QSize(37, 800), QSize(3, 7), QSize(5000, 2), QSize(2, 5000)}) {
        const QImage solid = samples::drawSolid(samples::Solid::Bottle, size.width(), size.height());
        const PhotonsParts parts = samples::photonsPicture(solid);
        const QImage result = picture(samples::photonsBytes(parts));
        EXPECT_EQ(result.size(), QSize(400, 400));
        EXPECT_EQ(result.format(), QImage::Format_RGB888);
        EXPECT_EQ(result, oracle(parts, kFallback)) << size.width() << " x " << size.height();
    }
}

TEST_F(PhotonsFileThumbnailTest, EveryPixelValue)
{
    QByteArray pixels;
    for (quint32 value = 0; value <= 0xFFFF; ++value)
        pixels += wordBytes({static_cast<quint16>(value)});
    for (const QSize size : {QSize(256, 256), QSize(400, 163)}) {
        const PhotonsParts parts = withPixels(size.width(), size.height(), pixels);
        const QByteArray bytes = samples::photonsBytes(parts);
        EXPECT_EQ(picture(bytes), oracle(parts, kFallback));
    }
}

TEST_F(PhotonsFileThumbnailTest, ChannelBits)
{
    const QImage result = picture(valid());
    EXPECT_EQ(result.pixel(0, 0), qRgb(0, 0, 248));
    EXPECT_EQ(result.pixel(399, 0), qRgb(248, 0, 0));
    EXPECT_EQ(result.pixel(0, 399), qRgb(0, 252, 0));
    EXPECT_EQ(result.pixel(399, 399), qRgb(128, 128, 128));
}

TEST_F(PhotonsFileThumbnailTest, MarginsHaveTheColourOfPixelOneOne)
{
    const QByteArray row = wordBytes({0x0000}).repeated(200);
    QByteArray pixels = row.repeated(100);
    pixels.replace(2 * 201, 2, wordBytes({0x001F}));
    const QImage result = picture(fileOf(200, 100, pixels));
    EXPECT_EQ(result.pixel(0, 99), qRgb(248, 0, 0));
    EXPECT_EQ(result.pixel(0, 100), qRgb(0, 0, 0));
    EXPECT_EQ(result.pixel(399, 299), qRgb(0, 0, 0));
    EXPECT_EQ(result.pixel(399, 300), qRgb(248, 0, 0));
}

TEST_F(PhotonsFileThumbnailTest, WithoutPixelOneOneMarginsHaveTheColourOfTheLengthField)
{
    // The length field 00 00 01 02 as a colour is blue 0, green 0, red 1.
    PhotonsParts parts = withPixels(4, 1, wordBytes({0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}));
    parts.version = QByteArray(0x0102, 'v');
    const QImage result = picture(samples::photonsBytes(parts));
    EXPECT_EQ(result, oracle(parts, qRgb(1, 0, 0)));
    EXPECT_EQ(result.pixel(0, 0), qRgb(1, 0, 0));
    EXPECT_EQ(result.pixel(0, 200), qRgb(248, 252, 248));
}

TEST_F(PhotonsFileThumbnailTest, VersionTextsOfAnyLength)
{
    for (const int length : {1, 2, 255, 4096, 16384, 70000}) {
        PhotonsParts parts = samples::photonsPicture(samples::drawSolid(samples::Solid::Bottle, 40, 30));
        parts.version = QByteArray(length, '\0');
        EXPECT_EQ(picture(samples::photonsBytes(parts)), oracle(parts, 0)) << length;
    }
}

TEST_F(PhotonsFileThumbnailTest, SizeZeroGivesThePlainFallbackColour)
{
    for (const QSize size :
         {QSize(0, 0), QSize(0, 5), QSize(5, 0), QSize(0, -1), QSize(kMinInt, 0), QSize(kMaxInt, 0)}) {
        PhotonsParts parts = withPixels(size.width(), size.height(), QByteArray());
        parts.version = QByteArray(0x0102, 'v');
        EXPECT_EQ(picture(samples::photonsBytes(parts)), plain(qRgb(1, 0, 0)));
    }
}

TEST_F(PhotonsFileThumbnailTest, TwoNegativeSizesNeedTheirBytesAndShowNone)
{
    EXPECT_EQ(picture(fileOf(-2, -3, QByteArray(12, '\xff'))), plain(kFallback));
}

TEST_F(PhotonsFileThumbnailTest, LastHeaderValueMayBeCutShort)
{
    for (const int missing : {1, 2, 3})
        EXPECT_EQ(picture(fileOf(0, 0, QByteArray()).chopped(missing)), plain(kFallback)) << missing;
}

TEST_F(PhotonsFileThumbnailTest, BytesAfterThePixelsAreIgnored)
{
    EXPECT_EQ(picture(valid() + QByteArray(1000, '\x5a')), picture(valid()));
}

TEST_F(PhotonsFileThumbnailTest, VersionTextOfLengthZero)
{
    PhotonsParts parts = withPixels(1, 1, wordBytes({0}));
    parts.versionLength = 0;
    expectFailure(make<PhotonsFileThumbnail>, samples::photonsBytes(parts), {39, "file read less", "fileReadLess"});
}

TEST_F(PhotonsFileThumbnailTest, VersionTextThatTakesAllBytes)
{
    PhotonsParts parts = withPixels(1, 1, wordBytes({0}));
    for (const quint32 length : {3U + 92U + 2U, 1000U, 0x80000000U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(length);
        parts.versionLength = length;
        expectFailure(make<PhotonsFileThumbnail>, samples::photonsBytes(parts),
                      {96, "file head read error", "filePrevErr"});
    }
}

TEST_F(PhotonsFileThumbnailTest, SizesWhosePixelsTheFileDoesNotHold)
{
    const QByteArray onePixel = wordBytes({0});
    struct {
        qint32 width, height;
        QByteArray pixels;
    } const cases[] = {
        {-1, 1, onePixel},          {1, -1, onePixel},      {-2, -3, QByteArray(11, '\0')}, {kMinInt, kMinInt, {}},
        {kMinInt, kMaxInt, {}},     {kMaxInt, kMaxInt, {}}, {kMaxInt / 2, 1, {}}, // the maximum count
        {kMaxInt / 2 + 1, 1, {}},                                                 // one more
        {65536, 65536, {}},         // in 32 bits this count wraps around to 0
        {kMinInt + 1, 1, onePixel}, // and this one to 2
    };
    for (const auto& size : cases) {
        SCOPED_TRACE(::testing::Message() << size.width << " x " << size.height);
        expectFailure(make<PhotonsFileThumbnail>, fileOf(size.width, size.height, size.pixels),
                      {48, "rgbBuf read less", "fileReadLess"});
    }
}

} // namespace
} // namespace zr::test
