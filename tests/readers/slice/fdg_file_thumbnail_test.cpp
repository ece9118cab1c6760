#include "readers/slice/fdg_file_thumbnail.h"

#include "readers/slice/vrx_file_thumbnail.h"
#include "tests/readers/slice/preview_oracle.h"
#include "tests/readers/slice/slice_reader_test.h"
#include "tests/readers/slice/test_previews.h"
#include "tools/samples/fdg_bytes.h"
#include "tools/samples/put_bytes.h"
#include "tools/samples/vrx_bytes.h"

#include <limits>

namespace zr::test
{
namespace
{

using samples::FdgParts;
using samples::PreviewParts;

constexpr char kDocumentWrong[] = "There is something wrong with the document";
constexpr char kHeadShort[] = "FdgHead_t read less";
constexpr char kPreviewHeadShort[] = "DlpPreviewHead_t read less";
constexpr char kDataShort[] = "src_RGB_Buffer read less";
constexpr int kHeadBytes = 216;

// A valid file with one thing changed.
QByteArray changed(const std::function<void(FdgParts&)>& change)
{
    return changedFile(samples::fdgBytes, smallPreview(), change);
}

QByteArray withPreview(const std::function<void(PreviewParts&)>& change)
{
    return changed([&change](FdgParts& parts) { change(parts.preview); });
}

QByteArray valid()
{
    return changed([](FdgParts&) {});
}

QImage expectedPicture(const PreviewParts& preview)
{
    return scaledTo400(oracleRunLength(preview.width, preview.height, preview.data, Scheme::Dark, 0));
}

class FdgFileThumbnailTest : public SliceReaderTest
{
};

TEST_F(FdgFileThumbnailTest, PictureIsTheScaledCanvas)
{
    for (const QSize size :
         {QSize(250, 150), QSize(400, 400), QSize(1, 9), QSize(9, 1), QSize(90, 1000), QSize(401, 3)}) {
        FdgParts parts;
        parts.preview = solidPreview(size.width(), size.height());
        const QImage picture = pictureOf<FdgFileThumbnail>(samples::fdgBytes(parts));
        EXPECT_EQ(picture.size(), QSize(400, 400));
        EXPECT_EQ(picture.format(), QImage::Format_RGB888);
        EXPECT_EQ(picture, expectedPicture(parts.preview));
    }
}

TEST_F(FdgFileThumbnailTest, SamePreviewAsInAVrxFileGivesTheSamePicture)
{
    FdgParts fdg;
    samples::VrxParts vrx;
    fdg.preview = vrx.preview = solidPreview(123, 77);
    EXPECT_EQ(pictureOf<FdgFileThumbnail>(samples::fdgBytes(fdg)), pictureOf<VrxFileThumbnail>(samples::vrxBytes(vrx)));
}

TEST_F(FdgFileThumbnailTest, SecondOffsetMayBeAnythingBelowTheSize)
{
    for (const int offset : {valid().size() - 1, 0, -1, std::numeric_limits<int>::min()}) {
        const QByteArray bytes = changed([offset](FdgParts& parts) { parts.secondHeadOffset = offset; });
        EXPECT_EQ(pictureOf<FdgFileThumbnail>(bytes), expectedPicture(smallPreview())) << offset;
    }
}

TEST_F(FdgFileThumbnailTest, NegativePreviewOffsetReadsOnBehindTheHeader)
{
    for (const int offset : {-1, std::numeric_limits<int>::min()}) {
        const QByteArray bytes = changed([offset](FdgParts& parts) { parts.previewHeadOffset = offset; });
        EXPECT_EQ(pictureOf<FdgFileThumbnail>(bytes), expectedPicture(smallPreview())) << offset;
    }
}

TEST_F(FdgFileThumbnailTest, NegativeDataOffsetReadsOnBehindThePreviewHeader)
{
    const QByteArray bytes = withPreview([](PreviewParts& preview) { preview.dataOffset = -1; });
    EXPECT_EQ(pictureOf<FdgFileThumbnail>(bytes), expectedPicture(smallPreview()));
}

TEST_F(FdgFileThumbnailTest, DataOffsetZeroIsTheStartOfTheFile)
{
    QByteArray bytes = withPreview([](PreviewParts& preview) {
        preview.dataOffset = 0;
        preview.dataSize = preview.data.size();
        preview.data.clear();
    });
    samples::putBytes(bytes, 0, smallPreview().data);
    EXPECT_EQ(pictureOf<FdgFileThumbnail>(bytes), expectedPicture(smallPreview()));
}

TEST_F(FdgFileThumbnailTest, BytesBehindTheDataAreNotRead)
{
    const QByteArray longer = withPreview([](PreviewParts& preview) {
        preview.dataSize = preview.data.size();
        preview.data += samples::wordBytes({0xFFFF, 0x0FFF});
    });
    EXPECT_EQ(pictureOf<FdgFileThumbnail>(longer), expectedPicture(smallPreview()));
}

TEST_F(FdgFileThumbnailTest, NegativeDataSizeIsAnAllocationFailure)
{
    expectBadAlloc<FdgFileThumbnail>(withPreview([](PreviewParts& preview) {
        preview.dataSize = -1;
        preview.dataOffset = 0x7FFFFFFF;
    }));
}

TEST_F(FdgFileThumbnailTest, OpenFileIsNotOpenedAgain)
{
    expectOpenFileIsRead<FdgFileThumbnail>(valid());
}

TEST_F(FdgFileThumbnailTest, FileThatCannotBeOpened)
{
    expectOpenFailures<FdgFileThumbnail>(20);
}

class FdgFailureTest : public FdgFileThumbnailTest, public ::testing::WithParamInterface<FailureCase>
{
};

TEST_P(FdgFailureTest, IsLoggedAndGivesNoPicture)
{
    expectFailure<FdgFileThumbnail>(GetParam());
}

QByteArray withSize(qint32 width, qint32 height)
{
    return withPreview([=](PreviewParts& preview) {
        preview.width = width;
        preview.height = height;
    });
}

QByteArray withSecondOffset(qint32 offset)
{
    return changed([offset](FdgParts& parts) { parts.secondHeadOffset = offset; });
}

QByteArray withPreviewOffset(qint32 offset)
{
    return changed([offset](FdgParts& parts) { parts.previewHeadOffset = offset; });
}

QByteArray withDataOffset(qint32 offset)
{
    return withPreview([offset](PreviewParts& preview) { preview.dataOffset = offset; });
}

// The header alone, with its second offset inside it.
QByteArray headOnly()
{
    return withSecondOffset(kHeadBytes - 1).left(kHeadBytes);
}

const int kValidSize = valid().size();
const FailureCase kFailures[] = {
    {"Empty", [] { return QByteArray(); }, kHeadShort, "fileReadLess", 29},
    {"Head215", [] { return valid().left(kHeadBytes - 1); }, kHeadShort, "fileReadLess", 29},
    {"HeadOnlySecondAtEnd", [] { return withSecondOffset(kHeadBytes).left(kHeadBytes); }, kDocumentWrong, "filePrevErr",
     35},
    {"SecondAtEnd", [] { return withSecondOffset(kValidSize); }, kDocumentWrong, "filePrevErr", 35},
    {"SecondFarAway", [] { return withSecondOffset(0x7FFFFFFF); }, kDocumentWrong, "filePrevErr", 35},
    {"HeadOnly", headOnly, kPreviewHeadShort, "fileReadLess", 44},
    {"PreviewAtEnd", [] { return withPreviewOffset(kValidSize); }, kPreviewHeadShort, "fileReadLess", 44},
    {"PreviewFarAway", [] { return withPreviewOffset(0x7FFFFFFF); }, kPreviewHeadShort, "fileReadLess", 44},
    {"PreviewCut", [] { return withPreviewOffset(kValidSize - 31); }, kPreviewHeadShort, "fileReadLess", 44},
    {"Width0", [] { return withSize(0, 2); }, kDocumentWrong, "filePrevErr", 52},
    {"Height0", [] { return withSize(3, 0); }, kDocumentWrong, "filePrevErr", 52},
    {"WidthNegative", [] { return withSize(-3, 2); }, kDocumentWrong, "filePrevErr", 52},
    {"Width10001", [] { return withSize(10001, 2); }, kDocumentWrong, "filePrevErr", 52},
    {"Height10001", [] { return withSize(3, 10001); }, kDocumentWrong, "filePrevErr", 52},
    {"DataAtEnd", [] { return withDataOffset(kValidSize); }, kDocumentWrong, "filePrevErr", 73},
    {"DataFarAway", [] { return withDataOffset(0x7FFFFFFF); }, kDocumentWrong, "filePrevErr", 73},
    {"DataCut", [] { return valid().chopped(1); }, kDataShort, "filePrevErr", 84},
    {"DataLastByteOnly", [] { return withDataOffset(kValidSize - 1); }, kDataShort, "filePrevErr", 84},
    {"DataHuge", [] { return withPreview([](PreviewParts& p) { p.dataSize = 0x7FFFFFFF; }); }, kDataShort,
     "filePrevErr", 84},
};

INSTANTIATE_TEST_SUITE_P(Rows, FdgFailureTest, ::testing::ValuesIn(kFailures), caseName);

} // namespace
} // namespace zr::test
