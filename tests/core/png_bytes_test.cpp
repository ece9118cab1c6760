// SPDX-License-Identifier: MIT
#include "core/png_bytes.h"

#include <QBuffer>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

// Each pixel another colour and, with alpha, another alpha.
QImage pictureOf(int width, int height, QImage::Format format)
{
    QImage picture(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, qRgba(x * 7 % 256, y * 11 % 256, (x + y) % 256, (x * 3 + y * 5) % 256));
    return picture.convertToFormat(format);
}

QImage savedAndRead(const QImage& picture)
{
    QBuffer buffer;
    EXPECT_TRUE(picture.save(&buffer, "PNG"));
    return QImage::fromData(buffer.data(), "PNG");
}

class PngBytesTest : public ::testing::TestWithParam<QImage::Format>
{
};

TEST_P(PngBytesTest, ReadsBackAsThePictureThatQtSaves)
{
    for (const QSize size : {QSize(1, 1), QSize(3, 5), QSize(401, 2), QSize(400, 400)}) {
        const QImage picture = pictureOf(size.width(), size.height(), GetParam());
        const QByteArray bytes = pngBytes(picture);
        EXPECT_TRUE(bytes.startsWith("\x89PNG\r\n\x1a\n"));
        EXPECT_EQ(QImage::fromData(bytes, "PNG"), savedAndRead(picture));
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, PngBytesTest,
                         ::testing::Values(QImage::Format_RGB888, QImage::Format_RGB32, QImage::Format_ARGB32,
                                           QImage::Format_ARGB32_Premultiplied, QImage::Format_RGB16,
                                           QImage::Format_Grayscale8, QImage::Format_Indexed8, QImage::Format_RGBA64));

TEST(PngBytesOfNothingTest, AreNone)
{
    EXPECT_EQ(pngBytes(QImage()), QByteArray());
}

} // namespace
} // namespace zr::test
