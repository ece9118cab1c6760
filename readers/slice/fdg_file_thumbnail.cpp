// SPDX-License-Identifier: MIT
#include "readers/slice/fdg_file_thumbnail.h"

#include "readers/slice/run_length_preview.h"
#include "readers/slice/slice_failures.h"
#include "readers/slice/thumbnail_canvas.h"

namespace zr
{
namespace
{

constexpr ReadFailure kCannotOpen = cannotOpen(20);
constexpr ReadFailure kHeadShort = readShort(29, "FdgHead_t read less", reason::kHeaderCut);
constexpr ReadFailure kSecondHeadPastEnd = documentWrong(35, reason::kSecondPreviewPastEnd);
constexpr PreviewFailures kPreviewFailures = previewFailures(
    /* headShort */ 44, /* sizeWrong */ 52, /* dataOffsetWrong */ 73, /* dataShort */ 84, key::kPreview);

struct FdgHead_t : LittleEndianBlock<216> {
    qint32 previewHeadOffset() const { return field<qint32, 44>(); }
    qint32 secondHeadOffset() const { return field<qint32, 48>(); }
};

} // namespace

FailureLines FdgFileThumbnail::failures()
{
    return kPreviewFailures.after({kCannotOpen, kHeadShort, kSecondHeadPastEnd});
}

void FdgFileThumbnail::readFile()
{
    openFile(kCannotOpen);
    const auto head = readHead<FdgHead_t>(kHeadShort);
    // Not the offset that is followed: files whose second one lies past the end count as damaged as a whole.
    if (head.secondHeadOffset() >= m_file.size())
        fail(kSecondHeadPastEnd);
    const PreviewBlock preview = loadPreviewBlock(head.previewHeadOffset(), kPreviewFailures);
    m_image = fittedToThumbnail(decodeRunLengthPreview(preview, PreviewShading::Dark, 0));
}

} // namespace zr
