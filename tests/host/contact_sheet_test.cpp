#include "host/contact_sheet.h"

#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

QImage plain(int width, int height, const QColor& colour)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

int countPixels(const QImage& image, QRgb colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) == colour;
    }
    return count;
}

TEST(ContactSheetTest, EveryPictureIsShownOnce)
{
    ContactSheet sheet;
    EXPECT_TRUE(sheet.isEmpty());
    sheet.add(plain(400, 400, Qt::red), "red.stl");
    sheet.add(plain(400, 200, Qt::green), "wide.stl");
    sheet.add(plain(100, 400, Qt::blue), "tall.stl");
    EXPECT_FALSE(sheet.isEmpty());

    const QImage drawn = sheet.draw();
    EXPECT_EQ(countPixels(drawn, qRgb(255, 0, 0)), 200 * 200);
    EXPECT_EQ(countPixels(drawn, qRgb(0, 255, 0)), 200 * 100);
    EXPECT_EQ(countPixels(drawn, qRgb(0, 0, 255)), 50 * 200);
}

TEST(ContactSheetTest, NamesAreWritten)
{
    ContactSheet with;
    with.add(plain(400, 400, Qt::red), "name.stl");
    ContactSheet without;
    without.add(plain(400, 400, Qt::red), "");
    EXPECT_NE(with.draw(), without.draw());
}

TEST(ContactSheetTest, ManyPicturesMakeRows)
{
    ContactSheet sheet;
    for (int i = 0; i < 60; ++i)
        sheet.add(plain(40, 40, Qt::red), "a rather long name of a file that does not fit below its picture.stl");
    const QImage drawn = sheet.draw();
    EXPECT_EQ(countPixels(drawn, qRgb(255, 0, 0)), 60 * 200 * 200);
    EXPECT_GT(drawn.height(), 1000);
}

} // namespace
} // namespace zr::test
