// SPDX-License-Identifier: MIT
#include "readers/slice/run_length_preview.h"

#include "tests/readers/slice/preview_oracle.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/preview_bytes.h"

#include <gtest/gtest.h>

#include <random>

namespace zr::test
{
namespace
{

using samples::wordBytes;

constexpr QRgb kDarkBackground = 0xFF00172D;

QRgb grey(int value)
{
    return qRgb(value, value, value);
}

PreviewBlock block(qint32 width, qint32 height, const QByteArray& data)
{
    PreviewBlock block;
    block.head.width = width;
    block.head.height = height;
    block.head.dataSize = data.size();
    block.src_RGB_Buffer.assign(data.begin(), data.end());
    return block;
}

QImage decoded(qint32 width, qint32 height, const QByteArray& data, Scheme scheme = Scheme::Dark, int minimumSide = 0)
{
    const auto shading = scheme == Scheme::Dark ? PreviewShading::Dark : PreviewShading::Light;
    return decodeRunLengthPreview(block(width, height, data), shading, minimumSide);
}

// The colour of the first of `count` pixels that `words` paint after the key word 0x0001.
QRgb secondPixel(Scheme scheme, std::initializer_list<quint16> words)
{
    return decoded(2, 1, wordBytes({0x0001}) + wordBytes(words), scheme).pixel(1, 0);
}

QRgb firstPixelOfPlainCanvas(const QImage& canvas)
{
    QImage plain(canvas.size(), canvas.format());
    plain.fill(canvas.pixel(0, 0));
    return canvas == plain ? canvas.pixel(0, 0) : QRgb{0};
}

TEST(RunLengthPreviewTest, SmallPictureWithKeyRunsAndShades)
{
    const QImage canvas = decoded(3, 2, wordBytes({0x0000, 0xF820, 0x0002, 0x0000, 0x0020, 0x0000}));
    ASSERT_EQ(canvas.size(), QSize(3, 3));
    EXPECT_EQ(canvas.format(), QImage::Format_RGB888);
    const QRgb expected[3][3] = {
        {kDarkBackground, grey(172), grey(172)},
        {grey(172), kDarkBackground, grey(129)},
        {kDarkBackground, kDarkBackground, kDarkBackground},
    };
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 3; ++x)
            EXPECT_EQ(canvas.pixel(x, y), expected[y][x]) << x << ", " << y;
    }
}

TEST(RunLengthPreviewTest, ShadesOfBothSchemes)
{
    EXPECT_EQ(secondPixel(Scheme::Dark, {0xFFFF, 0x0000}), grey(253));
    EXPECT_EQ(secondPixel(Scheme::Light, {0xFFFF, 0x0000}), qRgb(50, 157, 213));
    EXPECT_EQ(secondPixel(Scheme::Dark, {0xF800}), grey(171));
    EXPECT_EQ(secondPixel(Scheme::Light, {0xF800}), qRgb(17, 124, 180));
    EXPECT_EQ(secondPixel(Scheme::Dark, {0x0000}), grey(128));
    EXPECT_EQ(secondPixel(Scheme::Light, {0x0000}), qRgb(0, 107, 163));
    EXPECT_EQ(secondPixel(Scheme::Dark, {0x0001}), kDarkBackground);
    EXPECT_EQ(secondPixel(Scheme::Light, {0x0001}), qRgb(147, 147, 147));
}

TEST(RunLengthPreviewTest, EveryColourWordInBothSchemes)
{
    QByteArray data;
    for (quint32 word = 0; word <= 0xFFFF; ++word) {
        data += wordBytes({static_cast<quint16>(word)});
        if (word & 0x0020)
            data += wordBytes({0x0000});
    }
    for (const Scheme scheme : {Scheme::Dark, Scheme::Light})
        EXPECT_EQ(decoded(256, 256, data, scheme), oracleRunLength(256, 256, data, scheme, 0));
}

TEST(RunLengthPreviewTest, FirstWordIsBackgroundWithItsRunFlag)
{
    // The same colour without the flag is another colour.
    const QImage canvas = decoded(4, 2, wordBytes({0x1234, 0x0001, 0x1214, 0x1234, 0x0000}));
    EXPECT_EQ(canvas.pixel(0, 1), kDarkBackground);
    EXPECT_EQ(canvas.pixel(1, 1), kDarkBackground);
    EXPECT_NE(canvas.pixel(2, 1), kDarkBackground);
    EXPECT_EQ(canvas.pixel(3, 1), kDarkBackground);
}

TEST(RunLengthPreviewTest, RunLengths)
{
    struct {
        quint16 countWord;
        int pixels;
    } const cases[] = {{0xF003, 4}, {0x0003, 4}, {0x0000, 1}, {0xF000, 1}, {0x0FFF, 4096}, {0xFFFF, 4096}};
    for (const auto& run : cases) {
        const QImage canvas = decoded(5000, 1, wordBytes({0x0000, 0xF820, run.countWord}));
        const QRgb shade = canvas.pixel(1, 2499);
        EXPECT_EQ(shade, grey(172));
        EXPECT_EQ(canvas.pixel(run.pixels, 2499), shade) << run.pixels;
        EXPECT_EQ(canvas.pixel(run.pixels + 1, 2499), kDarkBackground) << run.pixels;
    }
}

TEST(RunLengthPreviewTest, DataWithoutAWholeWordGivesAPlainCanvas)
{
    for (const QByteArray& data : {QByteArray(), QByteArray("\xff")}) {
        EXPECT_EQ(firstPixelOfPlainCanvas(decoded(5, 3, data)), kDarkBackground);
        const QImage light = decoded(5, 3, data, Scheme::Light, 400);
        EXPECT_EQ(light.size(), QSize(400, 400));
        EXPECT_EQ(firstPixelOfPlainCanvas(light), qRgb(147, 147, 147));
    }
}

TEST(RunLengthPreviewTest, TrailingOddByteIsIgnored)
{
    const QByteArray data = wordBytes({0x0000, 0xF800});
    EXPECT_EQ(decoded(2, 2, data + '\xf8'), decoded(2, 2, data));
    // Nor is it the first half of a missing count.
    EXPECT_EQ(decoded(9, 9, wordBytes({0x0000, 0xF820}) + '\x05'), decoded(9, 9, wordBytes({0x0000, 0xF820, 0})));
}

TEST(RunLengthPreviewTest, RunWithoutItsCountPaintsOnePixel)
{
    EXPECT_EQ(decoded(4, 4, wordBytes({0x0000, 0xF820})), decoded(4, 4, wordBytes({0x0000, 0xF820, 0x0000})));
    EXPECT_EQ(firstPixelOfPlainCanvas(decoded(4, 4, wordBytes({0xF820}))), kDarkBackground);
}

TEST(RunLengthPreviewTest, SurplusPixelsFillTheBottomMarginAndNoMore)
{
    QByteArray data = wordBytes({0x0000});
    for (int i = 0; i < 40; ++i)
        data += wordBytes({0xF820, 0x0FFF});
    const QImage canvas = decoded(300, 100, data);
    ASSERT_EQ(canvas.size(), QSize(300, 300));
    EXPECT_EQ(canvas.pixel(299, 99), kDarkBackground);
    EXPECT_EQ(canvas.pixel(0, 100), kDarkBackground);
    EXPECT_EQ(canvas.pixel(1, 100), grey(172));
    EXPECT_EQ(canvas.pixel(299, 200), grey(172));
    EXPECT_EQ(canvas.pixel(299, 299), grey(172));
    EXPECT_EQ(canvas, oracleRunLength(300, 100, data, Scheme::Dark, 0));
}

TEST(RunLengthPreviewTest, MissingPixelsStayBackground)
{
    const QImage canvas = decoded(3, 3, wordBytes({0x0000, 0xF800, 0xF800, 0xF800}));
    EXPECT_EQ(canvas.pixel(0, 1), grey(171));
    EXPECT_EQ(canvas.pixel(1, 1), kDarkBackground);
    EXPECT_EQ(canvas.pixel(2, 2), kDarkBackground);
}

TEST(RunLengthPreviewTest, OddRemainderGoesToTheRightAndBottom)
{
    // The second pixel lies in the column or row after the first one's.
    const QByteArray data = wordBytes({0x0000, 0xF800});
    EXPECT_EQ(decoded(1, 4, data).pixel(1, 1), grey(171));
    EXPECT_EQ(decoded(4, 1, data).pixel(1, 1), grey(171));
    EXPECT_EQ(decoded(3, 3, data, Scheme::Dark, 6).pixel(2, 1), grey(171));
}

TEST(RunLengthPreviewTest, MinimumSide)
{
    const QByteArray data = wordBytes({0x0000, 0xF800});
    EXPECT_EQ(decoded(2, 1, data, Scheme::Light, 1).size(), QSize(2, 2));
    EXPECT_EQ(decoded(2, 1, data, Scheme::Light, 3).size(), QSize(3, 3));
    EXPECT_EQ(decoded(640, 480, data, Scheme::Light, 400).size(), QSize(640, 640));
}

// 2^32 pixels in runs of 4096, as two words each.
QByteArray fourGigapixels(int pixelsLess)
{
    constexpr int kRuns = 1 << 20;
    const QByteArray fullRun = wordBytes({0xF820, 0x0FFF});
    QByteArray data = wordBytes({0x0020, 0x0FFF});
    data += fullRun.repeated(kRuns - 2);
    return data + wordBytes({0xF820, static_cast<quint16>(0x0FFF - pixelsLess)});
}

TEST(RunLengthPreviewTest, PixelCounterWrapsAfterFourGigapixels)
{
    const QImage unwrapped = decoded(5, 3, fourGigapixels(0));
    EXPECT_EQ(unwrapped.pixel(0, 1), kDarkBackground);
    EXPECT_EQ(unwrapped.pixel(1, 1), kDarkBackground);

    const QImage wrapped = decoded(5, 3, fourGigapixels(0) + wordBytes({0x07C0}));
    EXPECT_NE(wrapped.pixel(0, 1), kDarkBackground);
    EXPECT_EQ(wrapped.pixel(1, 1), kDarkBackground);
}

TEST(RunLengthPreviewTest, RunGoesOnOverTheWrap)
{
    // A run of 9 of which two lie before the wrap.
    const QImage canvas = decoded(5, 3, fourGigapixels(2) + wordBytes({0x07E0, 0x0008}));
    const QRgb shade = canvas.pixel(0, 1);
    EXPECT_NE(shade, kDarkBackground);
    EXPECT_EQ(canvas.pixel(4, 1), shade);
    EXPECT_EQ(canvas.pixel(1, 2), shade);
    EXPECT_EQ(canvas.pixel(2, 2), kDarkBackground);
}

TEST(RunLengthPreviewTest, SinglePixelsGoOnOverTheWrap)
{
    const QImage canvas = decoded(5, 3, fourGigapixels(2) + wordBytes({0x07C0, 0x07C0, 0x07C0, 0x07C0}));
    EXPECT_NE(canvas.pixel(0, 1), kDarkBackground);
    EXPECT_NE(canvas.pixel(1, 1), kDarkBackground);
    EXPECT_EQ(canvas.pixel(2, 1), kDarkBackground);
}

TEST(RunLengthPreviewTest, PreviewOfMaxSize)
{
    const QImage canvas = decoded(10000, 10000, wordBytes({0x0000, 0xF800}));
    ASSERT_EQ(canvas.size(), QSize(10000, 10000));
    EXPECT_EQ(canvas.pixel(0, 0), kDarkBackground);
    EXPECT_EQ(canvas.pixel(1, 0), grey(171));
    EXPECT_EQ(canvas.pixel(9999, 9999), kDarkBackground);
}

struct Dimensions {
    int width, height, minimumSide;
};

class RandomPreviewTest : public ::testing::TestWithParam<Dimensions>
{
};

// Few different colours, so that the key comes up again; runs short against the picture.
QByteArray randomWords(std::mt19937& random, int count)
{
    const quint16 colours[] = {0x0000, 0x0020, 0xFFFF, 0xFFDF, 0x1234, 0x4321, 0x07E0, 0x8C71};
    QByteArray data;
    for (int i = 0; i < count; ++i) {
        const quint16 word = random() % 4 == 0 ? static_cast<quint16>(random()) : colours[random() % 8];
        data += wordBytes({word});
        if (word & 0x0020 && random() % 8 != 0)
            data += wordBytes({static_cast<quint16>((random() & 0xF000) | random() % 90)});
    }
    return data;
}

TEST_P(RandomPreviewTest, EqualsTheOracle)
{
    const auto [width, height, minimumSide] = GetParam();
    std::mt19937 random(static_cast<quint32>(width * 31 + height));
    for (const int words : {1, 2, 17, 300, 4000}) {
        const QByteArray data = randomWords(random, words);
        for (const Scheme scheme : {Scheme::Dark, Scheme::Light}) {
            EXPECT_EQ(decoded(width, height, data, scheme, minimumSide),
                      oracleRunLength(width, height, data, scheme, minimumSide));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, RandomPreviewTest,
                         ::testing::Values(Dimensions{1, 1, 0}, Dimensions{1, 60, 0}, Dimensions{60, 1, 0},
                                           Dimensions{61, 30, 0}, Dimensions{30, 61, 0}, Dimensions{64, 64, 0},
                                           Dimensions{1, 1, 40}, Dimensions{7, 20, 40}, Dimensions{500, 401, 400},
                                           Dimensions{401, 500, 400}, Dimensions{200, 120, 400}));

} // namespace
} // namespace zr::test
