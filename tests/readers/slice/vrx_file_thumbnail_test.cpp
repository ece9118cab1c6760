#include "readers/slice/vrx_file_thumbnail.h"

#include "tests/readers/slice/preview_oracle.h"
#include "tests/readers/slice/slice_reader_test.h"
#include "tests/readers/slice/test_previews.h"
#include "tools/samples/put_bytes.h"
#include "tools/samples/vrx_bytes.h"

#ifdef Q_OS_LINUX
#include <unistd.h>
#endif

namespace zr::test
{
namespace
{

using samples::PreviewParts;
using samples::VrxParts;
using samples::wordBytes;
using Layout = VrxParts::Layout;

constexpr char kDocumentWrong[] = "There is something wrong with the document";
constexpr char kDlpHeadShort[] = "DlpHead_t read less";
constexpr char kPreviewHeadShort[] = "DlpPreviewHead_t read less";
constexpr char kDataShort[] = "src_RGB_Buffer read less";

// A valid file with one thing changed.
QByteArray changed(const std::function<void(VrxParts&)>& change)
{
    return changedFile(samples::vrxBytes, smallPreview(), change);
}

QByteArray withPreview(const std::function<void(PreviewParts&)>& change)
{
    return changed([&change](VrxParts& parts) { change(parts.preview); });
}

QByteArray valid(Layout layout)
{
    return changed([layout](VrxParts& parts) { parts.layout = layout; });
}

QImage expectedPicture(const PreviewParts& preview)
{
    return scaledTo400(oracleRunLength(preview.width, preview.height, preview.data, Scheme::Dark, 0));
}

class VrxFileThumbnailTest : public SliceReaderTest
{
};

class VrxLayoutTest : public VrxFileThumbnailTest, public ::testing::WithParamInterface<Layout>
{
};

TEST_P(VrxLayoutTest, PictureIsTheScaledCanvas)
{
    for (const QSize size :
         {QSize(250, 150), QSize(400, 400), QSize(1, 7), QSize(7, 1), QSize(1000, 37), QSize(401, 399)}) {
        VrxParts parts;
        parts.layout = GetParam();
        parts.preview = solidPreview(size.width(), size.height());
        const QImage picture = pictureOf<VrxFileThumbnail>(samples::vrxBytes(parts));
        EXPECT_EQ(picture.size(), QSize(400, 400));
        EXPECT_EQ(picture.format(), QImage::Format_RGB888);
        EXPECT_EQ(picture, expectedPicture(parts.preview));
    }
}

INSTANTIATE_TEST_SUITE_P(Layouts, VrxLayoutTest,
                         ::testing::Values(Layout::Dlp, Layout::PreviewAt328, Layout::PreviewAt336));

TEST_F(VrxFileThumbnailTest, MarginsOfAWidePreviewAreBackground)
{
    // One pixel of the key colour, all others of another one.
    VrxParts parts;
    parts.preview.width = 250;
    parts.preview.height = 150;
    parts.preview.data = wordBytes({0x0000}) + wordBytes({0xF820, 0x0FFF}).repeated(9) + wordBytes({0xF820, 634});
    const QImage picture = pictureOf<VrxFileThumbnail>(samples::vrxBytes(parts));
    // Rows 50 to 199 of the canvas of 250 become rows 80 to 319.
    EXPECT_EQ(picture.pixel(399, 79), qRgb(0, 23, 45));
    EXPECT_EQ(picture.pixel(399, 80), qRgb(172, 172, 172));
    EXPECT_EQ(picture.pixel(399, 319), qRgb(172, 172, 172));
    EXPECT_EQ(picture.pixel(399, 320), qRgb(0, 23, 45));
}

TEST_F(VrxFileThumbnailTest, AnyOtherFirstWordMeansOffsetsInTheHeader)
{
    for (const quint32 magic : {0U, 1U, 0x0701FD12U, 0x12FD0106U, 0x12FD0108U, 0xFFFFFFFFU}) {
        const QByteArray bytes = changed([magic](VrxParts& parts) { parts.dlpMagic = magic; });
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), expectedPicture(smallPreview())) << magic;
    }
}

TEST_F(VrxFileThumbnailTest, AnyNonZeroLayoutFlagMeansTheLaterPlace)
{
    for (const int flag : {1, 0x0100, 0x8000, 0xFFFF}) {
        QByteArray bytes = valid(Layout::PreviewAt336);
        samples::putLittleEndian(bytes, 34, static_cast<quint16>(flag));
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), expectedPicture(smallPreview())) << flag;
    }
}

TEST_F(VrxFileThumbnailTest, OffsetFieldsDoNotMatterInTheLayoutWithFixedPlaces)
{
    QByteArray bytes = valid(Layout::PreviewAt328);
    samples::putLittleEndian<qint32>(bytes, 60, 0x7FFFFFFF);
    samples::putLittleEndian<qint32>(bytes, 72, 0x7FFFFFFF);
    EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), expectedPicture(smallPreview()));
}

TEST_F(VrxFileThumbnailTest, SecondOffsetMayBeAnythingBelowTheSize)
{
    const int size = valid(Layout::Dlp).size();
    for (const int offset : {size - 1, 0, -1, std::numeric_limits<int>::min()}) {
        const QByteArray bytes = changed([offset](VrxParts& parts) { parts.secondHeadOffset = offset; });
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), expectedPicture(smallPreview())) << offset;
    }
}

TEST_F(VrxFileThumbnailTest, NegativePreviewOffsetReadsOnBehindTheHeader)
{
    for (const int offset : {-1, -336, std::numeric_limits<int>::min()}) {
        const QByteArray bytes = changed([offset](VrxParts& parts) { parts.previewHeadOffset = offset; });
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), expectedPicture(smallPreview())) << offset;
    }
}

TEST_F(VrxFileThumbnailTest, NegativeDataOffsetReadsOnBehindThePreviewHeader)
{
    for (const Layout layout : {Layout::Dlp, Layout::PreviewAt328, Layout::PreviewAt336}) {
        const QByteArray bytes = changed([layout](VrxParts& parts) {
            parts.layout = layout;
            parts.preview.dataOffset = -1;
        });
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), expectedPicture(smallPreview()));
    }
}

TEST_F(VrxFileThumbnailTest, DataMayLieBeforeItsHeader)
{
    // At the start of the file the data's first words are the header's first word, too.
    for (const int offset : {0, 76}) {
        QByteArray bytes = withPreview([offset](PreviewParts& preview) {
            preview.dataOffset = offset;
            preview.dataSize = preview.data.size();
            preview.data.clear();
        });
        samples::putBytes(bytes, offset, smallPreview().data);
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), expectedPicture(smallPreview())) << offset;
    }
}

TEST_F(VrxFileThumbnailTest, BytesBehindTheDataAreNotRead)
{
    const QByteArray longer = withPreview([](PreviewParts& preview) {
        preview.dataSize = preview.data.size();
        preview.data += wordBytes({0xFFFF, 0x0FFF});
    });
    EXPECT_EQ(pictureOf<VrxFileThumbnail>(longer), expectedPicture(smallPreview()));
}

TEST_F(VrxFileThumbnailTest, EmptyDataGivesThePlainBackground)
{
    for (const int size : {0, 1}) {
        const QByteArray bytes = withPreview([size](PreviewParts& preview) { preview.dataSize = size; });
        const QImage picture = pictureOf<VrxFileThumbnail>(bytes);
        QImage plain(400, 400, QImage::Format_RGB888);
        plain.fill(qRgb(0, 23, 45));
        EXPECT_EQ(picture, plain);
    }
}

TEST_F(VrxFileThumbnailTest, LargestSideIsAccepted)
{
    for (const QSize size : {QSize(10000, 1), QSize(1, 10000)}) {
        PreviewParts preview = smallPreview();
        preview.width = size.width();
        preview.height = size.height();
        const QByteArray bytes = changed([&preview](VrxParts& parts) { parts.preview = preview; });
        EXPECT_EQ(pictureOf<VrxFileThumbnail>(bytes), expectedPicture(preview));
    }
}

TEST_F(VrxFileThumbnailTest, OpenFileIsNotOpenedAgain)
{
    for (const Layout layout : {Layout::Dlp, Layout::PreviewAt328, Layout::PreviewAt336})
        expectOpenFileIsRead<VrxFileThumbnail>(valid(layout));
}

TEST_F(VrxFileThumbnailTest, NegativeDataSizeIsAnAllocationFailure)
{
    for (const int size : {-1, std::numeric_limits<int>::min()}) {
        expectBadAlloc<VrxFileThumbnail>(withPreview([size](PreviewParts& preview) { preview.dataSize = size; }));
        // The allocation comes before the look at the data's place.
        expectBadAlloc<VrxFileThumbnail>(withPreview([size](PreviewParts& preview) {
            preview.dataSize = size;
            preview.dataOffset = 0x7FFFFFFF;
        }));
    }
}

TEST_F(VrxFileThumbnailTest, FileThatCannotBeOpened)
{
    expectOpenFailures<VrxFileThumbnail>(20);
}

#ifdef Q_OS_LINUX
// Of an ordinary file the second header is a part of the first one, which has been read already; a pipe runs dry.
TEST_F(VrxFileThumbnailTest, SecondHeaderShort)
{
    QByteArray bytes = valid(Layout::PreviewAt328).left(112 + 39);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(::write(ends[1], bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
    ::close(ends[1]);

    restartLog();
    Opened<VrxFileThumbnail> reader(path());
    ASSERT_TRUE(reader.file().open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle));
    EXPECT_TRUE(reader.getImage().isNull());
    EXPECT_FALSE(reader.file().isOpen());
    // A file that is opened by its descriptor keeps the name it was given.
    EXPECT_EQ(logMessages(), failureLines(43, "VrxFileHeader_t read less\n" + path()) << "29 fileReadLess");
}
#endif

class VrxFailureTest : public VrxFileThumbnailTest, public ::testing::WithParamInterface<FailureCase>
{
};

TEST_P(VrxFailureTest, IsLoggedAndGivesNoPicture)
{
    expectFailure<VrxFileThumbnail>(GetParam());
}

QByteArray withSize(qint32 width, qint32 height)
{
    return withPreview([=](PreviewParts& preview) {
        preview.width = width;
        preview.height = height;
    });
}

QByteArray withDataOffsetFromEnd(int distance)
{
    const int size = valid(Layout::Dlp).size();
    return withPreview([=](PreviewParts& preview) { preview.dataOffset = size + distance; });
}

QByteArray withSecondOffset(qint32 offset)
{
    return changed([offset](VrxParts& parts) { parts.secondHeadOffset = offset; });
}

QByteArray withPreviewOffset(qint32 offset)
{
    return changed([offset](VrxParts& parts) { parts.previewHeadOffset = offset; });
}

const int kValidSize = valid(Layout::Dlp).size();
const FailureCase kFailures[] = {
    {"Empty", [] { return QByteArray(); }, kDlpHeadShort, "fileReadLess", 29},
    {"Head111", [] { return valid(Layout::Dlp).left(111); }, kDlpHeadShort, "fileReadLess", 29},
    {"VrxHead111", [] { return valid(Layout::PreviewAt328).left(111); }, kDlpHeadShort, "fileReadLess", 29},
    {"SecondAtEnd", [] { return withSecondOffset(kValidSize); }, kDocumentWrong, "filePrevErr", 53},
    {"SecondFarAway", [] { return withSecondOffset(0x7FFFFFFF); }, kDocumentWrong, "filePrevErr", 53},
    {"HeadAtEnd", [] { return withPreviewOffset(kValidSize); }, kPreviewHeadShort, "fileReadLess", 64},
    {"HeadFarAway", [] { return withPreviewOffset(0x7FFFFFFF); }, kPreviewHeadShort, "fileReadLess", 64},
    {"HeadCut", [] { return withPreviewOffset(kValidSize - 31); }, kPreviewHeadShort, "fileReadLess", 64},
    {"HeadCutAt328", [] { return valid(Layout::PreviewAt328).left(328 + 31); }, kPreviewHeadShort, "fileReadLess", 64},
    {"HeadCutAt336", [] { return valid(Layout::PreviewAt336).left(336 + 31); }, kPreviewHeadShort, "fileReadLess", 64},
    {"Width0", [] { return withSize(0, 2); }, kDocumentWrong, "filePrevErr", 72},
    {"Height0", [] { return withSize(3, 0); }, kDocumentWrong, "filePrevErr", 72},
    {"WidthNegative", [] { return withSize(-3, 2); }, kDocumentWrong, "filePrevErr", 72},
    {"HeightNegative", [] { return withSize(3, -2); }, kDocumentWrong, "filePrevErr", 72},
    {"Width10001", [] { return withSize(10001, 2); }, kDocumentWrong, "filePrevErr", 72},
    {"Height10001", [] { return withSize(3, 10001); }, kDocumentWrong, "filePrevErr", 72},
    {"HeightHuge", [] { return withSize(3, 0x7FFFFFFF); }, kDocumentWrong, "filePrevErr", 72},
    {"SizeBeforeAllocation",
     [] {
         return withPreview([](PreviewParts& preview) {
             preview.width = 0;
             preview.dataSize = -1;
             preview.dataOffset = 0x7FFFFFFF;
         });
     },
     kDocumentWrong, "filePrevErr", 72},
    {"DataAtEnd", [] { return withDataOffsetFromEnd(0); }, kDocumentWrong, "filePrevErr", 93},
    {"DataBehindEnd", [] { return withDataOffsetFromEnd(1); }, kDocumentWrong, "filePrevErr", 93},
    {"DataCut", [] { return valid(Layout::Dlp).chopped(1); }, kDataShort, "filePrevErr", 104},
    {"DataCutFixedPlace", [] { return valid(Layout::PreviewAt336).chopped(1); }, kDataShort, "filePrevErr", 104},
    {"DataLastByteOnly", [] { return withDataOffsetFromEnd(-1); }, kDataShort, "filePrevErr", 104},
    {"DataHuge", [] { return withPreview([](PreviewParts& p) { p.dataSize = 0x7FFFFFFF; }); }, kDataShort,
     "filePrevErr", 104},
    {"DataHugeNegativeOffset",
     [] {
         return withPreview([](PreviewParts& preview) {
             preview.dataOffset = -1;
             preview.dataSize = 0x7FFFFFFF;
         });
     },
     kDataShort, "filePrevErr", 104},
};

INSTANTIATE_TEST_SUITE_P(Rows, VrxFailureTest, ::testing::ValuesIn(kFailures), caseName);

} // namespace
} // namespace zr::test
