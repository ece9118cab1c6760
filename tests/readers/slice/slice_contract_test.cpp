// SPDX-License-Identifier: MIT
// What the reader of each slice format has to do with any file.

#include "tests/readers/slice/slice_formats.h"

#include <QFileInfo>

#include <algorithm>

namespace zr::test
{
namespace
{

class SliceContractTest : public SliceReaderTest, public ::testing::WithParamInterface<SliceFormat>
{
};

TEST_P(SliceContractTest, FileThatCannotBeOpened)
{
    for (const QString& name : {path(), QFileInfo(path()).path()}) // a missing file, and a folder
        expectOpenFailure(GetParam().makeReader, name, GetParam().cannotOpen);
}

TEST_P(SliceContractTest, OpenFileIsNotOpenedAgain)
{
    const QImage picture = pictureOf(GetParam().makeReader, GetParam().valid);
    EXPECT_FALSE(picture.isNull());
    const auto reader = GetParam().makeReader(path());
    ASSERT_TRUE(fileIn(*reader).open(QIODevice::ReadOnly));
    EXPECT_EQ(reader->getImage(), picture);
    EXPECT_FALSE(fileIn(*reader).isOpen());
}

TEST_P(SliceContractTest, SecondReadingGivesTheSamePicture)
{
    const auto reader = GetParam().makeReader(write(GetParam().valid));
    const QImage picture = reader->getImage();
    EXPECT_FALSE(picture.isNull());
    EXPECT_EQ(reader->getImage(), picture);
    EXPECT_FALSE(fileIn(*reader).isOpen());
}

// At each length; in a long part of the file, at some of them, which include its first and its last one.
TEST_P(SliceContractTest, FileThatIsCutShort)
{
    constexpr int kMaxLengths = 100;
    const SliceFormat& format = GetParam();
    int from = 0;
    for (const auto& [bytes, failure] : format.cuts) {
        const int step = (bytes - from + kMaxLengths - 1) / kMaxLengths;
        for (int length = from; length < bytes; length = std::max(length + 1, std::min(length + step, bytes - 1))) {
            SCOPED_TRACE(length);
            expectFailure(format.makeReader, format.valid.left(length), failure);
        }
        from = bytes;
    }
    EXPECT_EQ(from, format.valid.size());
}

INSTANTIATE_TEST_SUITE_P(Formats, SliceContractTest, ::testing::ValuesIn(sliceFormats()), formatName<SliceFormat>);

} // namespace
} // namespace zr::test
