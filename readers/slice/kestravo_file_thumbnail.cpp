// SPDX-License-Identifier: MIT
#include "readers/slice/kestravo_file_thumbnail.h"

#include "readers/slice/run_length_preview.h"
#include "readers/slice/slice_failures.h"
#include "readers/slice/thumbnail_canvas.h"

namespace zr
{
namespace
{

constexpr ReadFailure kCannotOpen = cannotOpen(18);
constexpr ReadFailure kHeadShort = readShort(28, "read file head less", reason::kHeaderCut);
constexpr ReadFailure kNoPreview{{33, "thumbnail offset is zero", FailureLine::Rest::PathAppended, reason::kNoPreview},
                                 key::kPreview};
constexpr ReadFailure kPreviewPastEnd = documentWrong(39, reason::kPreviewPastEnd);
constexpr PreviewFailures kPreviewFailures{
    PreviewFailures::DataOffsetCheck::BeforeSizeAndNotZero,
    /* headShort */ readShort(50, "svgx file head read less", reason::kPreviewHeaderCut),
    /* sizeWrong */ previewWrong(62, "prev size is unlawful", reason::kPreviewSizeWrong),
    /* dataOffsetWrong */ previewWrong(56, "prev offset is unlawful", reason::kNoPixelsOrPastEnd),
    /* dataShort */ pixelsCut(80, key::kReadShort),
};

struct KestravoHead_t : LittleEndianBlock<412> {
    qint32 thumbnailOffset() const { return field<qint32, 12>(); }
};

} // namespace

FailureLines KestravoFileThumbnail::failures()
{
    return kPreviewFailures.after({kCannotOpen, kHeadShort, kNoPreview, kPreviewPastEnd});
}

void KestravoFileThumbnail::readFile()
{
    openFile(kCannotOpen);
    const auto head = readHead<KestravoHead_t>(kHeadShort);
    if (head.thumbnailOffset() == 0)
        fail(kNoPreview);
    if (head.thumbnailOffset() >= m_file.size())
        fail(kPreviewPastEnd);
    const PreviewBlock preview = loadPreviewBlock(head.thumbnailOffset(), kPreviewFailures);
    m_image = decodeRunLengthPreview(preview, PreviewShading::Light, kThumbnailSidePx);
}

} // namespace zr
