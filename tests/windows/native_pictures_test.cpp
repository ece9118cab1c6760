// The DLL gives the pictures that the Linux host gives.

#include "tests/support/qt_printers.h"
#include "tests/windows/server_test.h"
#include "tools/samples/sample_files.h"

#include <QFileInfo>

#include <algorithm>
#include <cstdlib>

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

// The largest difference of any channel of any pixel of two pictures of one size.
int largestDifference(const QImage& left, const QImage& right)
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

class NativePicturesTest : public ServerTest
{
};

TEST_F(NativePicturesTest, EverySampleLooksTheSame)
{
    const QString folder = qEnvironmentVariable("ZRTHUMB_NATIVE_PICTURES");
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        SCOPED_TRACE(sample.name);
        const QString name = QString::fromLatin1(sample.name);
        const QImage native = QImage(folder + '/' + name + ".png").convertToFormat(QImage::Format_ARGB32);
        const QImage picture = request(writeSource(name, sample.make()));
        ASSERT_FALSE(native.isNull());
        ASSERT_EQ(picture.size(), native.size());
        EXPECT_LE(largestDifference(picture, native), toleranceOf(name));
    }
}

} // namespace
} // namespace zr::test
