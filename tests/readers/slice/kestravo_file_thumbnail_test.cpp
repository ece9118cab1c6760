#include "readers/slice/kestravo_file_thumbnail.h"

#include "tests/readers/slice/preview_oracle.h"
#include "tests/readers/slice/slice_reader_test.h"
#include "tests/readers/slice/test_previews.h"
#include "tools/samples/kestravo_bytes.h"

#include <limits>

namespace zr::test
{
namespace
{

using samples::KestravoParts;
using samples::PreviewParts;
using samples::wordBytes;

constexpr char kHeadShort[] = "read file head less";
constexpr char kOffsetZero[] = "thumbnail offset is zero";
constexpr char kDocumentWrong[] = "There is something wrong with the document";
constexpr char kPreviewHeadShort[] = "svgx file head read less";
constexpr char kDataOffsetWrong[] = "prev offset is unlawful";
constexpr char kSizeWrong[] = "prev size is unlawful";
constexpr char kDataShort[] = "src_RGB_Buffer read less";
constexpr int kHeadBytes = 412;
constexpr QRgb kBackground = qRgb(147, 147, 147);

// A valid file with one thing changed.
QByteArray changed(const std::function<void(KestravoParts&)>& change)
{
    return changedFile(samples::kestravoBytes, smallPreview(), change);
}

QByteArray withPreview(const std::function<void(PreviewParts&)>& change)
{
    return changed([&change](KestravoParts& parts) { change(parts.preview); });
}

QByteArray valid()
{
    return changed([](KestravoParts&) {});
}

QImage expectedPicture(const PreviewParts& preview)
{
    return oracleRunLength(preview.width, preview.height, preview.data, Scheme::Light, 400);
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

// Where the pixels lie that are no background.
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

class KestravoFileThumbnailTest : public SliceReaderTest
{
};

TEST_F(KestravoFileThumbnailTest, PictureIsTheUnscaledCanvas)
{
    for (const QSize size : {QSize(200, 120), QSize(400, 400), QSize(1, 9), QSize(9, 1), QSize(401, 3), QSize(3, 401),
                             QSize(640, 480), QSize(1, 1), QSize(399, 398)}) {
        KestravoParts parts;
        parts.preview = solidPreview(size.width(), size.height());
        const QImage picture = pictureOf<KestravoFileThumbnail>(samples::kestravoBytes(parts));
        EXPECT_EQ(picture.format(), QImage::Format_RGB888);
        EXPECT_EQ(picture, expectedPicture(parts.preview));
    }
}

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
        const QByteArray bytes = withPreview([word](PreviewParts& preview) {
            preview.data = wordBytes({static_cast<quint16>(word), 0x0000, 0xF800});
        });
        const QImage picture = pictureOf<KestravoFileThumbnail>(bytes);
        EXPECT_EQ(picture.pixel(198, 199), kBackground);
        EXPECT_EQ(picture.pixel(199, 199), word == 0x0000 ? kBackground : qRgb(0, 107, 163));
        EXPECT_EQ(picture.pixel(200, 199), word == 0xF800 ? kBackground : qRgb(17, 124, 180));
    }
}

TEST_F(KestravoFileThumbnailTest, NegativeThumbnailOffsetReadsOnBehindTheHeader)
{
    for (const int offset : {-1, std::numeric_limits<int>::min()}) {
        const QByteArray bytes = changed([offset](KestravoParts& parts) { parts.thumbnailOffset = offset; });
        EXPECT_EQ(pictureOf<KestravoFileThumbnail>(bytes), expectedPicture(smallPreview())) << offset;
    }
}

TEST_F(KestravoFileThumbnailTest, NegativeDataOffsetReadsOnBehindThePreviewHeader)
{
    const QByteArray bytes = withPreview([](PreviewParts& preview) { preview.dataOffset = -1; });
    EXPECT_EQ(pictureOf<KestravoFileThumbnail>(bytes), expectedPicture(smallPreview()));
}

TEST_F(KestravoFileThumbnailTest, EmptyDataGivesThePlainBackground)
{
    const QByteArray bytes = withPreview([](PreviewParts& preview) { preview.dataSize = 0; });
    EXPECT_EQ(paintedRect(pictureOf<KestravoFileThumbnail>(bytes)), QRect());
}

TEST_F(KestravoFileThumbnailTest, NegativeDataSizeIsAnAllocationFailure)
{
    expectBadAlloc<KestravoFileThumbnail>(withPreview([](PreviewParts& preview) { preview.dataSize = -1; }));
}

TEST_F(KestravoFileThumbnailTest, OpenFileIsNotOpenedAgain)
{
    expectOpenFileIsRead<KestravoFileThumbnail>(valid());
}

TEST_F(KestravoFileThumbnailTest, FileThatCannotBeOpened)
{
    expectOpenFailures<KestravoFileThumbnail>(18);
}

class KestravoFailureTest : public KestravoFileThumbnailTest, public ::testing::WithParamInterface<FailureCase>
{
};

TEST_P(KestravoFailureTest, IsLoggedAndGivesNoPicture)
{
    expectFailure<KestravoFileThumbnail>(GetParam());
}

QByteArray withSize(qint32 width, qint32 height)
{
    return withPreview([=](PreviewParts& preview) {
        preview.width = width;
        preview.height = height;
    });
}

QByteArray withThumbnailOffset(qint32 offset)
{
    return changed([offset](KestravoParts& parts) { parts.thumbnailOffset = offset; });
}

QByteArray withDataOffset(qint32 offset)
{
    return withPreview([offset](PreviewParts& preview) { preview.dataOffset = offset; });
}

// Whatever else is wrong with the preview, the data's place is looked at first, then the size.
QByteArray allWrong(qint32 dataOffset)
{
    return withPreview([dataOffset](PreviewParts& preview) {
        preview.dataOffset = dataOffset;
        preview.dataSize = -1;
        preview.width = 0;
    });
}

const int kValidSize = valid().size();
const FailureCase kFailures[] = {
    {"Empty", [] { return QByteArray(); }, kHeadShort, "fileReadLess", 28},
    {"Head411", [] { return valid().left(kHeadBytes - 1); }, kHeadShort, "fileReadLess", 28},
    {"OffsetZero", [] { return withThumbnailOffset(0); }, kOffsetZero, "filePrevErr", 33, FailureCase::Path::Appended},
    {"OffsetAtEnd", [] { return withThumbnailOffset(kValidSize); }, kDocumentWrong, "filePrevErr", 39},
    {"OffsetFarAway", [] { return withThumbnailOffset(0x7FFFFFFF); }, kDocumentWrong, "filePrevErr", 39},
    {"PreviewCut", [] { return withThumbnailOffset(kValidSize - 31); }, kPreviewHeadShort, "fileReadLess", 50},
    {"PreviewLastByte", [] { return withThumbnailOffset(kValidSize - 1); }, kPreviewHeadShort, "fileReadLess", 50},
    {"NegativeOffsetShort", [] { return withThumbnailOffset(-1).left(kHeadBytes + 31); }, kPreviewHeadShort,
     "fileReadLess", 50},
    {"DataOffsetZero", [] { return withDataOffset(0); }, kDataOffsetWrong, "filePrevErr", 56},
    {"DataAtEnd", [] { return withDataOffset(kValidSize); }, kDataOffsetWrong, "filePrevErr", 56},
    {"DataFarAway", [] { return withDataOffset(0x7FFFFFFF); }, kDataOffsetWrong, "filePrevErr", 56},
    {"DataOffsetBeforeSize", [] { return allWrong(0); }, kDataOffsetWrong, "filePrevErr", 56},
    {"SizeBeforeAllocation", [] { return allWrong(1); }, kSizeWrong, "filePrevErr", 62},
    {"Width0", [] { return withSize(0, 2); }, kSizeWrong, "filePrevErr", 62},
    {"Height0", [] { return withSize(3, 0); }, kSizeWrong, "filePrevErr", 62},
    {"HeightNegative", [] { return withSize(3, -1); }, kSizeWrong, "filePrevErr", 62},
    {"Width10001", [] { return withSize(10001, 2); }, kSizeWrong, "filePrevErr", 62},
    {"Height10001", [] { return withSize(3, 10001); }, kSizeWrong, "filePrevErr", 62},
    {"DataCut", [] { return valid().chopped(1); }, kDataShort, "fileReadLess", 80},
    {"DataLastByteOnly", [] { return withDataOffset(kValidSize - 1); }, kDataShort, "fileReadLess", 80},
    {"DataHuge", [] { return withPreview([](PreviewParts& p) { p.dataSize = 0x7FFFFFFF; }); }, kDataShort,
     "fileReadLess", 80},
};

INSTANTIATE_TEST_SUITE_P(Rows, KestravoFailureTest, ::testing::ValuesIn(kFailures), caseName);

} // namespace
} // namespace zr::test
