// SPDX-License-Identifier: MIT
// What the readers of the formats with a preview block share: where the block may lie, what it may hold, and what is
// wrong with one.

#include "tests/readers/slice/slice_formats.h"
#include "tools/samples/drawn_solids.h"
#include "tools/samples/put_bytes.h"

#include <algorithm>
#include <limits>

namespace zr::test
{
namespace
{

using samples::PreviewParts;

constexpr qint32 kMin = std::numeric_limits<qint32>::min();
constexpr qint32 kMax = std::numeric_limits<qint32>::max();

enum class Field { Offset, CheckedOffset, UncheckedOffset, Width, Height, DataOffset, DataSize };

// Where the field lies in a valid file; 0 where the format does not have it.
int placeOf(Field field, const PreviewFormat& format)
{
    const PreviewFormat::Places& places = format.places;
    switch (field) {
    case Field::Offset:
        return places.offset;
    case Field::CheckedOffset:
        return places.checkedOffset;
    case Field::UncheckedOffset:
        return places.checkedOffset == places.offset ? 0 : places.offset;
    default:
        return places.previewHead + 4 * (static_cast<int>(field) - static_cast<int>(Field::Width));
    }
}

// Another value of a field than a valid file has.
struct Change {
    Field field;
    qint32 value;
    bool fromEnd = false;
};

QByteArray changed(const PreviewFormat& format, const std::vector<Change>& changes)
{
    QByteArray bytes = format.valid();
    for (const auto& [field, value, fromEnd] : changes)
        samples::putLittleEndian<qint32>(bytes, placeOf(field, format), fromEnd ? bytes.size() + value : value);
    return bytes;
}

class PreviewContractTest : public SliceReaderTest, public ::testing::WithParamInterface<PreviewFormat>
{
protected:
    const PreviewFormat& format() const { return GetParam(); }
    QImage smallPicture() const { return format().coding.picture(format().coding.small); }

    // The bytes give the small preview's picture.
    void expectSmallPicture(const QByteArray& bytes)
    {
        EXPECT_EQ(pictureOf(format().makeReader, bytes), smallPicture());
    }

    void expectSmallPictureWith(Field field, std::initializer_list<qint32> values)
    {
        for (const qint32 value : values) {
            SCOPED_TRACE(value);
            expectSmallPicture(changed(format(), {{field, value}}));
        }
    }
};

std::vector<PreviewFormat> formatsWith(Field field)
{
    std::vector<PreviewFormat> formats;
    for (const PreviewFormat& format : previewFormats()) {
        if (placeOf(field, format) != 0)
            formats.push_back(format);
    }
    return formats;
}

TEST_P(PreviewContractTest, PictureOfADrawnPreview)
{
    for (const QSize size :
         {QSize(250, 150), QSize(200, 120), QSize(200, 100), QSize(100, 400), QSize(400, 400), QSize(399, 398),
          QSize(640, 480), QSize(401, 399), QSize(401, 3), QSize(3, 401), QSize(1000, 37), QSize(90, 1000),
          QSize(37, 800), QSize(1, 9), QSize(9, 1), QSize(1, 7), QSize(7, 1), QSize(3, 7), QSize(1, 1)}) {
        const PreviewParts preview =
            format().coding.of(samples::drawSolid(samples::Solid::Rook, size.width(), size.height()));
        const QImage picture = pictureOf(format().makeReader, format().fileOf(preview));
        const int side = format().coding.isScaled ? 400 : std::max({size.width(), size.height(), 400});
        EXPECT_EQ(picture.size(), QSize(side, side));
        EXPECT_EQ(picture.format(), QImage::Format_RGB888);
        EXPECT_EQ(picture, format().coding.picture(preview)) << size.width() << " x " << size.height();
    }
}

TEST_P(PreviewContractTest, NegativeDataOffsetReadsOnAfterThePreviewHeader)
{
    expectSmallPictureWith(Field::DataOffset, {-1, kMin});
}

TEST_P(PreviewContractTest, DataMayLieBeforeItsHeader)
{
    std::vector<int> offsets{76};
    // At the start of the file the data's first words are the header's first word, which formats with two layouts need.
    if (!format().checksDataOffsetFirst && format().places.offset != 0)
        offsets.push_back(0);
    for (const int offset : offsets) {
        PreviewParts preview = format().coding.small;
        preview.dataOffset = offset;
        preview.dataSize = preview.data.size();
        preview.data.clear();
        QByteArray bytes = format().fileOf(preview);
        samples::putBytes(bytes, offset, format().coding.small.data);
        SCOPED_TRACE(offset);
        expectSmallPicture(bytes);
    }
}

TEST_P(PreviewContractTest, BytesAfterTheDataAreNotRead)
{
    expectSmallPicture(format().valid() + samples::wordBytes({0xFFFF, 0x0FFF}));
}

TEST_P(PreviewContractTest, DataWithoutAWholeWordGivesThePlainBackground)
{
    QImage plain(400, 400, QImage::Format_RGB888);
    plain.fill(format().coding.background);
    for (const qint32 size : {0, 1})
        EXPECT_EQ(pictureOf(format().makeReader, changed(format(), {{Field::DataSize, size}})), plain) << size;
}

TEST_P(PreviewContractTest, NegativeDataSizeIsAnAllocationFailure)
{
    for (const qint32 size : {-1, kMin}) {
        SCOPED_TRACE(size);
        expectBadAlloc(format().makeReader, changed(format(), {{Field::DataSize, size}}));
        // The allocation comes before the look at the data's place.
        if (!format().checksDataOffsetFirst)
            expectBadAlloc(format().makeReader,
                           changed(format(), {{Field::DataSize, size}, {Field::DataOffset, kMax}}));
    }
}

struct Fault {
    const char* name;
    std::vector<Change> changes;
    Failure PreviewFormat::Failures::*failure;
};

using Failures = PreviewFormat::Failures;

const Fault kFaults[] = {
    {"CheckedOffsetAtEnd", {{Field::CheckedOffset, 0, true}}, &Failures::offsetPastEnd},
    {"CheckedOffsetFarAway", {{Field::CheckedOffset, kMax}}, &Failures::offsetPastEnd},
    {"UncheckedOffsetAtEnd", {{Field::UncheckedOffset, 0, true}}, &Failures::previewHeadShort},
    {"UncheckedOffsetFarAway", {{Field::UncheckedOffset, kMax}}, &Failures::previewHeadShort},
    {"PreviewHeadCut", {{Field::Offset, -31, true}}, &Failures::previewHeadShort},
    {"PreviewHeadLastByte", {{Field::Offset, -1, true}}, &Failures::previewHeadShort},
    {"Width0", {{Field::Width, 0}}, &Failures::sizeWrong},
    {"Height0", {{Field::Height, 0}}, &Failures::sizeWrong},
    {"WidthNegative", {{Field::Width, -3}}, &Failures::sizeWrong},
    {"HeightNegative", {{Field::Height, -1}}, &Failures::sizeWrong},
    {"Width10001", {{Field::Width, 10001}}, &Failures::sizeWrong},
    {"Height10001", {{Field::Height, 10001}}, &Failures::sizeWrong},
    {"HeightHuge", {{Field::Height, kMax}}, &Failures::sizeWrong},
    {"SizeBeforeAllocation", {{Field::Width, 0}, {Field::DataSize, -1}, {Field::DataOffset, 1}}, &Failures::sizeWrong},
    {"DataAtEnd", {{Field::DataOffset, 0, true}}, &Failures::dataOffsetWrong},
    {"DataPastEnd", {{Field::DataOffset, 1, true}}, &Failures::dataOffsetWrong},
    {"DataFarAway", {{Field::DataOffset, kMax}}, &Failures::dataOffsetWrong},
    {"DataLastByte", {{Field::DataOffset, -1, true}}, &Failures::dataShort},
    {"DataHuge", {{Field::DataSize, kMax}}, &Failures::dataShort},
    {"DataHugeAtNegativeOffset", {{Field::DataOffset, -1}, {Field::DataSize, kMax}}, &Failures::dataShort},
};

TEST_P(PreviewContractTest, FaultIsLoggedAndGivesNoPicture)
{
    for (const Fault& fault : kFaults) {
        if (placeOf(fault.changes.front().field, format()) == 0)
            continue;
        SCOPED_TRACE(fault.name);
        expectFailure(format().makeReader, changed(format(), fault.changes), format().failures.*fault.failure);
    }
}

TEST_P(PreviewContractTest, SizeAndDataOffsetAreCheckedInTheFormatsOrder)
{
    const QByteArray bytes = changed(format(), {{Field::Width, 0}, {Field::DataSize, -1}, {Field::DataOffset, kMax}});
    const Failures& failures = format().failures;
    expectFailure(format().makeReader, bytes,
                  format().checksDataOffsetFirst ? failures.dataOffsetWrong : failures.sizeWrong);
}

INSTANTIATE_TEST_SUITE_P(Formats, PreviewContractTest, ::testing::ValuesIn(previewFormats()),
                         formatName<PreviewFormat>);

using OffsetContractTest = PreviewContractTest;

TEST_P(OffsetContractTest, NegativeOffsetReadsOnAfterTheHeader)
{
    expectSmallPictureWith(Field::Offset, {-1, -336, kMin});
}

INSTANTIATE_TEST_SUITE_P(Formats, OffsetContractTest, ::testing::ValuesIn(formatsWith(Field::Offset)),
                         formatName<PreviewFormat>);

using SecondOffsetContractTest = PreviewContractTest;

TEST_P(SecondOffsetContractTest, MayBeAnythingBelowTheSize)
{
    expectSmallPictureWith(Field::CheckedOffset, {format().valid().size() - 1, 0, -1, kMin});
}

INSTANTIATE_TEST_SUITE_P(Formats, SecondOffsetContractTest, ::testing::ValuesIn(formatsWith(Field::UncheckedOffset)),
                         formatName<PreviewFormat>);

} // namespace
} // namespace zr::test
