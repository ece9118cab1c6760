#include "readers/slice/fdg_file_thumbnail.h"

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
constexpr ReadFailure kHeadShort{{29, "FdgHead_t read less", Rest::PathOnNextLine, reason::kHeaderCut}, "fileReadLess"};
constexpr ReadFailure kSecondHeadPastEnd{{35, kDocumentWrong, Rest::PathOnNextLine, reason::kSecondPreviewPastEnd},
                                         "filePrevErr"};
constexpr PreviewBlockRules kPreviewRules{
    Rules::FirstCheck::Size,
    Rules::ZeroDataOffset::IsAnOffset,
    /* headShort */
    {{44, "DlpPreviewHead_t read less", Rest::PathOnNextLine, reason::kPreviewHeaderCut}, "fileReadLess"},
    /* sizeWrong */ {{52, kDocumentWrong, Rest::PathOnNextLine, reason::kPreviewSizeWrong}, "filePrevErr"},
    /* dataOffsetWrong */ {{73, kDocumentWrong, Rest::PathOnNextLine, reason::kPixelsPastEnd}, "filePrevErr"},
    /* dataShort */ {{84, "src_RGB_Buffer read less", Rest::PathOnNextLine, reason::kPreviewCut}, "filePrevErr"},
};

struct FdgHead_t {
    using Block = LittleEndianBlock<216>;

    explicit FdgHead_t(const Block& block)
        : previewHeadOffset(block.field<qint32, 44>()), secondHeadOffset(block.field<qint32, 48>())
    {
    }

    qint32 previewHeadOffset;
    qint32 secondHeadOffset;
};

} // namespace

FailureLines FdgFileThumbnail::failures()
{
    return {kCannotOpen,
            kHeadShort,
            kSecondHeadPastEnd,
            kPreviewRules.headShort,
            kPreviewRules.sizeWrong,
            kPreviewRules.dataOffsetWrong,
            kPreviewRules.dataShort};
}

void FdgFileThumbnail::readFile()
{
    m_image = QImage();
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly))
        fail(kCannotOpen);

    const auto head = readHead<FdgHead_t>(m_file);
    if (!head)
        fail(kHeadShort);
    // Not the offset that is followed: files whose second one lies past the end count as damaged as a whole.
    if (head->secondHeadOffset >= m_file.size())
        fail(kSecondHeadPastEnd);

    const PreviewBlock preview = loadPreviewBlock(m_file, head->previewHeadOffset, kPreviewRules,
                                                  [this](const ReadFailure& failure) { fail(failure); });
    m_image = fittedToThumbnail(decodeRunLengthPreview(preview, PreviewShading::Dark, 0));
}

QImage FdgFileThumbnail::previewImage()
{
    return m_image;
}

} // namespace zr
