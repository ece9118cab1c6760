// SPDX-License-Identifier: MIT
#include "readers/slice/svgx_file_thumbnail.h"

#include "tests/readers/slice/preview_oracle.h"
#include "tests/readers/slice/slice_reader_test.h"
#include "tools/samples/drawn_solids.h"
#include "tools/samples/put_bytes.h"
#include "tools/samples/svgx_bytes.h"

#include <cstring>
#include <limits>
#include <memory>
#include <vector>

namespace zr::test
{
namespace
{

using samples::kSvgxBmpBytes;
using samples::kSvgxHeadBytes;
using samples::SvgxParts;

QImage solid(int width, int height)
{
    return samples::drawSolid(samples::Solid::SpinningTop, width, height);
}

QByteArray fileOf(const QByteArray& bmp)
{
    SvgxParts parts;
    parts.bmp = bmp;
    return samples::svgxBytes(parts);
}

QByteArray withPreviewOffset(qint32 offset)
{
    SvgxParts parts;
    parts.bmp = samples::bmpBytes(solid(44, 44));
    parts.previewOffset = offset;
    return samples::svgxBytes(parts);
}

QImage expectedPicture(const QImage& preview)
{
    const QImage fitted = scaledTo400(preview);
    return centredOnSquare(fitted, fitted.pixel(0, 0));
}

class SvgxFileThumbnailTest : public SliceReaderTest
{
protected:
    QImage picture(const QByteArray& bytes) { return pictureOf<SvgxFileThumbnail>(bytes); }
};

TEST_F(SvgxFileThumbnailTest, PictureIsFittedAndCentred)
{
    for (const QSize size : {QSize(44, 44), QSize(60, 30), QSize(30, 60), QSize(1, 44), QSize(44, 1), QSize(1, 1),
                             QSize(43, 41), QSize(1900, 1), QSize(1, 1400), QSize(500, 3)}) {
        const QImage preview = solid(size.width(), size.height());
        const QImage result = picture(fileOf(samples::bmpBytes(preview)));
        EXPECT_EQ(result.size(), QSize(400, 400));
        EXPECT_EQ(result.format(), QImage::Format_RGB888);
        EXPECT_EQ(result, expectedPicture(preview)) << size.width() << " x " << size.height();
    }
}

TEST_F(SvgxFileThumbnailTest, MarginsHaveTheColourOfTheTopLeftPixel)
{
    QImage preview(60, 30, QImage::Format_RGB32);
    preview.fill(qRgb(1, 2, 3));
    preview.setPixel(0, 0, qRgb(200, 100, 50));
    preview.setPixel(1, 1, qRgb(9, 9, 9));
    const QImage result = picture(fileOf(samples::bmpBytes(preview)));
    EXPECT_EQ(result.pixel(399, 99), qRgb(200, 100, 50));
    EXPECT_EQ(result.pixel(399, 100), qRgb(1, 2, 3));
    EXPECT_EQ(result.pixel(399, 299), qRgb(1, 2, 3));
    EXPECT_EQ(result.pixel(399, 300), qRgb(200, 100, 50));
}

TEST_F(SvgxFileThumbnailTest, PreviewMayLieAnywhereInTheFile)
{
    const QByteArray bmp = samples::bmpBytes(solid(44, 44));
    const QImage expected = expectedPicture(solid(44, 44));
    for (const int offset : {kSvgxHeadBytes, kSvgxHeadBytes + 1, 5000}) {
        QByteArray bytes(offset, '\x77');
        samples::putLittleEndian<qint32>(bytes, 16, offset);
        EXPECT_EQ(picture(bytes + bmp), expected) << offset;
        EXPECT_EQ(picture(bytes + bmp + "more"), expected) << offset;
    }
}

TEST_F(SvgxFileThumbnailTest, NegativeOffsetReadsOnAfterTheHeader)
{
    for (const int offset : {-1, -kSvgxHeadBytes, std::numeric_limits<int>::min()})
        EXPECT_EQ(picture(withPreviewOffset(offset)), expectedPicture(solid(44, 44))) << offset;
}

TEST_F(SvgxFileThumbnailTest, BytesThatAreNotABmpGiveThePlainColourOfANullPicture)
{
    QImage plain(400, 400, QImage::Format_RGB888);
    plain.fill(QImage().pixel(0, 0));
    EXPECT_EQ(plain.pixel(0, 0), qRgb(0x00, 0x30, 0x39));

    const QByteArray bmp = samples::bmpBytes(solid(44, 44));
    QByteArray pixelsMissing = bmp.left(54);
    samples::putLittleEndian<qint32>(pixelsMissing, 18, 0);
    for (const QByteArray& bytes : {QByteArray(), QByteArray(kSvgxBmpBytes, '\xff'), QByteArray("\x89PNG\r\n\x1a\n"),
                                    bmp.mid(1), bmp.left(20), pixelsMissing}) {
        EXPECT_EQ(picture(fileOf(bytes)), plain);
    }
}

// A BMP file in pieces.
struct BmpKind {
    const char* name;
    int infoBytes;
    int width, height; // negative height: top row first
    int bitsPerPixel;
    int compression;
    QByteArray masksAndPalette;
    QByteArray pixels;
};

QByteArray bmpOf(const BmpKind& kind)
{
    constexpr int kFileHeadBytes = 14;
    const int pixelOffset = kFileHeadBytes + kind.infoBytes + kind.masksAndPalette.size();
    QByteArray bytes;
    samples::putBytes(bytes, 0, "BM");
    samples::putLittleEndian<qint32>(bytes, 2, pixelOffset + kind.pixels.size());
    samples::putLittleEndian<qint32>(bytes, 10, pixelOffset);
    samples::putLittleEndian<qint32>(bytes, 14, kind.infoBytes);
    if (kind.infoBytes == 12) { // the oldest header has 16-bit sizes
        samples::putLittleEndian(bytes, 18, static_cast<qint16>(kind.width));
        samples::putLittleEndian(bytes, 20, static_cast<qint16>(kind.height));
        samples::putLittleEndian<qint16>(bytes, 22, 1);
        samples::putLittleEndian(bytes, 24, static_cast<qint16>(kind.bitsPerPixel));
    } else {
        samples::putLittleEndian<qint32>(bytes, 18, kind.width);
        samples::putLittleEndian<qint32>(bytes, 22, kind.height);
        samples::putLittleEndian<qint16>(bytes, 26, 1);
        samples::putLittleEndian(bytes, 28, static_cast<qint16>(kind.bitsPerPixel));
        samples::putLittleEndian<qint32>(bytes, 30, kind.compression);
        samples::putBytes(bytes, 14 + 40, QByteArray(kind.infoBytes - 40, '\0'));
    }
    samples::putBytes(bytes, kFileHeadBytes + kind.infoBytes, kind.masksAndPalette);
    samples::putBytes(bytes, pixelOffset, kind.pixels);
    return bytes;
}

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

// Blue, green, red, 0 for each colour.
const QByteArray kTwoColours = hex("30201000 90a0b000");
const QByteArray kSixteenColours = hex("30201000 90a0b000 00ff0000") + QByteArray(13 * 4, '\x42');
const QByteArray kManyColours = hex("30201000 90a0b000 00ff0000") + QByteArray(253 * 4, '\x42');

class SvgxBmpKindTest : public SvgxFileThumbnailTest, public ::testing::WithParamInterface<BmpKind>
{
};

TEST_P(SvgxBmpKindTest, IsShownAsQtReadsIt)
{
    const QByteArray bmp = bmpOf(GetParam());
    const QImage preview = QImage::fromData(bmp.leftJustified(kSvgxBmpBytes, '\0'), "bmp");
    ASSERT_EQ(preview.size(), QSize(4, 2));
    const QImage result = picture(fileOf(bmp));
    EXPECT_EQ(result, expectedPicture(preview));
    // The top row starts with the first colour, and the bottom row ends with another one.
    EXPECT_EQ(result.pixel(0, 100), qRgb(0x10, 0x20, 0x30));
    EXPECT_NE(result.pixel(399, 299), qRgb(0x10, 0x20, 0x30));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, SvgxBmpKindTest,
    ::testing::Values(
        BmpKind{"Bits1", 40, 4, 2, 1, 0, kTwoColours, hex("10000000 60000000")},
        BmpKind{"Bits4", 40, 4, 2, 4, 0, kSixteenColours, hex("01210000 01200000")},
        BmpKind{"Bits8", 40, 4, 2, 8, 0, kManyColours, hex("00010201 00010200")},
        BmpKind{"Rle8", 40, 4, 2, 8, 1, kManyColours, hex("0300 0101 0000 0400 0000 0001")},
        BmpKind{"Rle4", 40, 4, 2, 4, 2, kSixteenColours, hex("0401 0000 0400 0000 0001")},
        BmpKind{"Bits16", 40, 4, 2, 16, 0, {}, hex("0000ff7f1f00ff7f 8608000000000000")},
        BmpKind{"Bits24", 40, 4, 2, 24, 0, {}, hex("302010 90a0b0 302010 90a0b0") + hex("302010").repeated(4)},
        BmpKind{"Bits24TopFirst", 40, 4, -2, 24, 0, {}, hex("302010").repeated(4) + hex("302010 90a0b0 302010 90a0b0")},
        BmpKind{"Bits24Oldest", 12, 4, 2, 24, 0, {}, hex("302010 90a0b0 302010 90a0b0") + hex("302010").repeated(4)},
        BmpKind{"Bits32", 40, 4, 2, 32, 0, {}, hex("90a0b000").repeated(4) + hex("30201000").repeated(4)},
        BmpKind{"Bits32Masks", 40, 4, 2, 32, 3, hex("000000ff 0000ff00 00ff0000"),
                hex("0090a0b0").repeated(4) + hex("00302010").repeated(4)}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(SvgxFileThumbnailTest, AlphaIsDropped)
{
    // 32 bits with masks for four channels, in the second last header version.
    constexpr int kInfoBytes = 108;
    QByteArray bmp =
        bmpOf({"", kInfoBytes, 4, 2, 32, 3, {}, hex("90a0b080").repeated(4) + hex("30201040").repeated(4)});
    samples::putBytes(bmp, 14 + 40, hex("0000ff00 00ff0000 ff000000 000000ff"));
    const QImage preview = QImage::fromData(bmp.leftJustified(kSvgxBmpBytes, '\0'), "bmp");
    ASSERT_TRUE(preview.hasAlphaChannel());
    ASSERT_EQ(preview.pixel(0, 0), qRgba(0x10, 0x20, 0x30, 0x40));
    const QImage result = picture(fileOf(bmp));
    EXPECT_EQ(result, expectedPicture(preview));
    EXPECT_EQ(result.pixel(200, 0), qRgb(0x10, 0x20, 0x30));
    EXPECT_EQ(result.pixel(200, 299), qRgb(0xb0, 0xa0, 0x90));
}

// Lets the next small pieces of memory hold old contents, as in a host process that has run for a while.
void dirtyMemory()
{
    std::vector<std::unique_ptr<uchar[]>> pieces;
    for (std::size_t bytes = 16; bytes <= 1 << 20; bytes += bytes / 4) {
        for (int i = 0; i < 8; ++i) {
            pieces.push_back(std::make_unique<uchar[]>(bytes));
            std::memset(pieces.back().get(), 0xA5, bytes);
        }
    }
}

struct ShortBmp {
    const char* name;
    BmpKind kind;
    QRgb bottomLeft; ///< the file's own colour
};

class SvgxShortBmpTest : public SvgxFileThumbnailTest, public ::testing::WithParamInterface<ShortBmp>
{
};

// The bottom rows come first in the file. What memory held before must not become a picture that other programs see.
TEST_P(SvgxShortBmpTest, PixelsThatTheFileDoesNotHoldAreBlack)
{
    const QByteArray bytes = fileOf(bmpOf(GetParam().kind));
    dirtyMemory();
    const QImage result = picture(bytes);
    EXPECT_EQ(result.pixel(0, 399), GetParam().bottomLeft);
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 400; ++x)
            ASSERT_EQ(result.pixel(x, y), qRgb(0, 0, 0)) << x << ' ' << y;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, SvgxShortBmpTest,
    ::testing::Values(
        ShortBmp{"Bits24", {"", 40, 60, 60, 24, 0, {}, hex("302010").repeated(1500)}, qRgb(0x10, 0x20, 0x30)},
        ShortBmp{"Bits32Large", {"", 40, 5000, 5000, 32, 0, {}, hex("30201000").repeated(1400)}, qRgb(0, 0, 0)},
        ShortBmp{"Bits8",
                 {"", 40, 100, 100, 8, 0, QByteArray(4, '\0') + kManyColours.mid(4), QByteArray(4700, '\1')},
                 qRgb(0xb0, 0xa0, 0x90)},
        ShortBmp{"Rle8",
                 {"", 40, 8, 8, 8, 1, QByteArray(4, '\0') + kManyColours.mid(4), hex("0801 0000 0002 0007 0001")},
                 qRgb(0xb0, 0xa0, 0x90)},
        ShortBmp{"Rle4",
                 {"", 40, 8, 8, 4, 2, QByteArray(4, '\0') + kSixteenColours.mid(4), hex("0811 0000 0002 0007 0001")},
                 qRgb(0xb0, 0xa0, 0x90)}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(SvgxFileThumbnailTest, MissingPixelsWithAlphaAreBlack)
{
    QByteArray bmp = bmpOf({"", 108, 60, 60, 32, 3, {}, hex("302010ff").repeated(60 * 20)});
    samples::putBytes(bmp, 14 + 40, hex("0000ff00 00ff0000 ff000000 000000ff"));
    const QByteArray bytes = fileOf(bmp);
    dirtyMemory();
    const QImage result = picture(bytes);
    EXPECT_EQ(result.pixel(0, 399), qRgb(0x10, 0x20, 0x30));
    for (int i = 0; i < 400 * 200; ++i)
        ASSERT_EQ(result.pixel(i % 400, i / 400), qRgb(0, 0, 0)) << i;
}

// Qt looks colours up without looking at the palette's length.
TEST_F(SvgxFileThumbnailTest, ColoursPastThePaletteAreBlack)
{
    for (const int used : {1, 2, 190}) {
        QByteArray row;
        for (int index = 0; index < 256; ++index)
            row.append(static_cast<char>(index));
        QByteArray bmp = bmpOf({"", 40, 256, 1, 8, 0, hex("30201000").repeated(used), row});
        samples::putLittleEndian<qint32>(bmp, 46, used);
        dirtyMemory();
        const QImage result = picture(fileOf(bmp));
        for (int x = 0; x < 400; ++x) {
            const int index = (2 * x + 1) * 256 / 800;
            EXPECT_EQ(result.pixel(x, 199), index < used ? qRgb(0x10, 0x20, 0x30) : qRgb(0, 0, 0)) << used << ' ' << x;
        }
    }
    QByteArray bmp = bmpOf({"", 40, 4, 2, 1, 0, hex("30201000"), hex("a0000000 a0000000")});
    samples::putLittleEndian<qint32>(bmp, 46, 1);
    const QImage result = picture(fileOf(bmp));
    EXPECT_EQ(result.pixel(0, 200), qRgb(0, 0, 0));
    EXPECT_EQ(result.pixel(150, 200), qRgb(0x10, 0x20, 0x30));
}

TEST_F(SvgxFileThumbnailTest, SizesThatNoFileHoldsGiveAPicture)
{
    for (const QSize size : {QSize(1, 1 << 28), QSize(1 << 28, 1), QSize(16384, 16384), QSize(1 << 20, 200)}) {
        const QByteArray bmp = bmpOf({"", 40, size.width(), size.height(), 24, 0, {}, QByteArray(5000, '\x42')});
        EXPECT_EQ(picture(fileOf(bmp)).size(), QSize(400, 400)) << size.width() << " x " << size.height();
    }
}

TEST_F(SvgxFileThumbnailTest, OffsetZeroOrPastTheEndMeansNoPreview)
{
    for (const int offset : {0, kSvgxHeadBytes + kSvgxBmpBytes, 0x7FFFFFFF}) {
        SCOPED_TRACE(offset);
        expectFailure(make<SvgxFileThumbnail>, withPreviewOffset(offset),
                      {33, "There is something wrong with the document", "filePrevErr"});
    }
}

TEST_F(SvgxFileThumbnailTest, OffsetWithTooFewBytesAfterIt)
{
    const Failure failure{51, "rgbBuf read less", "fileReadLess"};
    for (const int offset : {kSvgxHeadBytes + kSvgxBmpBytes - 1, kSvgxHeadBytes + 1}) {
        SCOPED_TRACE(offset);
        expectFailure(make<SvgxFileThumbnail>, withPreviewOffset(offset), failure);
    }
    expectFailure(make<SvgxFileThumbnail>, withPreviewOffset(-1).chopped(1), failure);
}

} // namespace
} // namespace zr::test
