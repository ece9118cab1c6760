#include "readers/slice/vrx_file_thumbnail.h"

#include "core/reasons.h"
#include "readers/slice/preview_block.h"
#include "readers/slice/run_length_preview.h"
#include "readers/slice/thumbnail_canvas.h"

namespace zr
{
namespace
{

using Rest = FailureLine::Rest;
using Rules = PreviewBlockRules;

constexpr char kDocumentWrong[] = "There is something wrong with the document";

constexpr ReadFailure kCannotOpen{{20, "file open errr ", Rest::None, reason::kCannotBeOpened}, "openFileErr"};
constexpr ReadFailure kDlpHeadShort{{29, "DlpHead_t read less", Rest::PathOnNextLine, reason::kHeaderCut},
                                    "fileReadLess"};
constexpr ReadFailure kVrxHeadShort{{43, "VrxFileHeader_t read less", Rest::PathOnNextLine, reason::kHeaderCut},
                                    "fileReadLess"};
constexpr ReadFailure kSecondHeadPastEnd{{53, kDocumentWrong, Rest::PathOnNextLine, reason::kSecondPreviewPastEnd},
                                         "filePrevErr"};
constexpr PreviewBlockRules kPreviewRules{
    Rules::FirstCheck::Size,
    Rules::ZeroDataOffset::IsAnOffset,
    /* headShort */
    {{64, "DlpPreviewHead_t read less", Rest::PathOnNextLine, reason::kPreviewHeaderCut}, "fileReadLess"},
    /* sizeWrong */ {{72, kDocumentWrong, Rest::PathOnNextLine, reason::kPreviewSizeWrong}, "filePrevErr"},
    /* dataOffsetWrong */ {{93, kDocumentWrong, Rest::PathOnNextLine, reason::kPixelsPastEnd}, "filePrevErr"},
    /* dataShort */ {{104, "src_RGB_Buffer read less", Rest::PathOnNextLine, reason::kPreviewCut}, "filePrevErr"},
};

// The first word of the newer layout, in which the preview header has one of two fixed places.
constexpr quint32 kVrxMagic = 0x12FD0107;
constexpr qint64 kPreviewHeadOffset = 328;
constexpr qint64 kPreviewHeadOffsetWithFlag = 336;

struct DlpHead_t {
    using Block = LittleEndianBlock<112>;

    explicit DlpHead_t(const Block& block)
        : magic(block.field<quint32, 0>()), previewHeadOffset(block.field<qint32, 60>()),
          secondHeadOffset(block.field<qint32, 72>())
    {
    }

    quint32 magic;
    qint32 previewHeadOffset;
    qint32 secondHeadOffset;
};

struct VrxFileHeader_t {
    using Block = LittleEndianBlock<40>;

    explicit VrxFileHeader_t(const Block& block) : layoutFlag(block.field<quint16, 34>()) {}

    quint16 layoutFlag;
};

} // namespace

FailureLines VrxFileThumbnail::failures()
{
    return {kCannotOpen,
            kDlpHeadShort,
            kVrxHeadShort,
            kSecondHeadPastEnd,
            kPreviewRules.headShort,
            kPreviewRules.sizeWrong,
            kPreviewRules.dataOffsetWrong,
            kPreviewRules.dataShort};
}

void VrxFileThumbnail::readFile()
{
    m_image = QImage();
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly))
        fail(kCannotOpen);

    const auto dlpHead = readHead<DlpHead_t>(m_file);
    if (!dlpHead)
        fail(kDlpHeadShort);

    qint64 headOffset = dlpHead->previewHeadOffset;
    if (dlpHead->magic == kVrxMagic) {
        m_file.seek(0);
        const auto vrxHead = readHead<VrxFileHeader_t>(m_file);
        if (!vrxHead)
            fail(kVrxHeadShort);
        headOffset = vrxHead->layoutFlag != 0 ? kPreviewHeadOffsetWithFlag : kPreviewHeadOffset;
    } else if (dlpHead->secondHeadOffset >= m_file.size()) {
        // Not the offset that is followed: files whose second one lies past the end count as damaged as a whole.
        fail(kSecondHeadPastEnd);
    }

    const PreviewBlock preview =
        loadPreviewBlock(m_file, headOffset, kPreviewRules, [this](const ReadFailure& failure) { fail(failure); });
    m_image = fittedToThumbnail(decodeRunLengthPreview(preview, PreviewShading::Dark, 0));
}

QImage VrxFileThumbnail::previewImage()
{
    return m_image;
}

} // namespace zr
