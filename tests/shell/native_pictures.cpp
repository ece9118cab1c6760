// SPDX-License-Identifier: MIT
#include "tests/shell/native_pictures.h"

#include "tests/support/qt_printers.h"

#include <QFileInfo>

#include <algorithm>
#include <cstdlib>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

// Models are drawn by OpenGL, which may round differently.
constexpr int kModelTolerance = 2;

int toleranceOf(const QString& name)
{
    const QStringList models = {"stl", "obj", "slc"};
    return models.contains(QFileInfo(name).suffix()) ? kModelTolerance : 0;
}

// The max difference of any channel of any pixel of two pictures of one size.
int maxDifference(const QImage& left, const QImage& right)
{
    int largest = 0;
    for (int y = 0; y < left.height(); ++y) {
        const uchar* const leftLine = left.constScanLine(y);
        const uchar* const rightLine = right.constScanLine(y);
        for (int i = 0; i < left.width() * 4; ++i)
            largest = std::max(largest, std::abs(leftLine[i] - rightLine[i]));
    }
    return largest;
}

} // namespace

void expectNativePicture(const QString& name, const QImage& picture)
{
    const QString path = qEnvironmentVariable("ZRTHUMB_NATIVE_PICTURES") + '/' + name + ".png";
    const QImage native = QImage(path).convertToFormat(QImage::Format_ARGB32);
    ASSERT_FALSE(native.isNull()) << path.toStdString();
    ASSERT_EQ(picture.size(), native.size());
    ASSERT_EQ(picture.format(), native.format());
    EXPECT_LE(maxDifference(picture, native), toleranceOf(name));
}

} // namespace zr::test
