#include "readers/slice/kestravo_file_thumbnail.h"

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

constexpr ReadFailure kCannotOpen{{18, "file open errr ", Rest::None, reason::kCannotBeOpened}, "openFileErr"};
constexpr ReadFailure kHeadShort{{28, "read file head less", Rest::PathOnNextLine, reason::kHeaderCut}, "fileReadLess"};
constexpr ReadFailure kNoPreview{{33, "thumbnail offset is zero", Rest::PathAppended, reason::kNoPreview},
                                 "filePrevErr"};
constexpr ReadFailure kPreviewPastEnd{
    {39, "There is something wrong with the document", Rest::PathOnNextLine, reason::kPreviewPastEnd}, "filePrevErr"};
constexpr PreviewBlockRules kPreviewRules{
    Rules::FirstCheck::DataOffset,
    Rules::ZeroDataOffset::MeansNoPreview,
    /* headShort */ {{50, "svgx file head read less", Rest::PathOnNextLine, reason::kPreviewHeaderCut}, "fileReadLess"},
    /* sizeWrong */ {{62, "prev size is unlawful", Rest::PathOnNextLine, reason::kPreviewSizeWrong}, "filePrevErr"},
    /* dataOffsetWrong */
    {{56, "prev offset is unlawful", Rest::PathOnNextLine, reason::kNoPixelsOrPastEnd}, "filePrevErr"},
    /* dataShort */ {{80, "src_RGB_Buffer read less", Rest::PathOnNextLine, reason::kPreviewCut}, "fileReadLess"},
};

struct KestravoHead_t {
    using Block = LittleEndianBlock<412>;

    explicit KestravoHead_t(const Block& block) : thumbnailOffset(block.field<qint32, 12>()) {}

    qint32 thumbnailOffset;
};

} // namespace

FailureLines KestravoFileThumbnail::failures()
{
    return {kCannotOpen,
            kHeadShort,
            kNoPreview,
            kPreviewPastEnd,
            kPreviewRules.headShort,
            kPreviewRules.sizeWrong,
            kPreviewRules.dataOffsetWrong,
            kPreviewRules.dataShort};
}

void KestravoFileThumbnail::readFile()
{
    m_image = QImage();
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly))
        fail(kCannotOpen);

    const auto head = readHead<KestravoHead_t>(m_file);
    if (!head)
        fail(kHeadShort);
    if (head->thumbnailOffset == 0)
        fail(kNoPreview);
    if (head->thumbnailOffset >= m_file.size())
        fail(kPreviewPastEnd);

    const PreviewBlock preview = loadPreviewBlock(m_file, head->thumbnailOffset, kPreviewRules,
                                                  [this](const ReadFailure& failure) { fail(failure); });
    m_image = decodeRunLengthPreview(preview, PreviewShading::Light, kThumbnailSidePx);
}

QImage KestravoFileThumbnail::previewImage()
{
    return m_image;
}

} // namespace zr
