// SPDX-License-Identifier: MIT
#include "readers/slice/vrx_file_thumbnail.h"

#include "readers/slice/run_length_preview.h"
#include "readers/slice/slice_failures.h"
#include "readers/slice/thumbnail_canvas.h"

namespace zr
{
namespace
{

constexpr ReadFailure kCannotOpen = cannotOpen(20);
constexpr ReadFailure kDlpHeadShort = readShort(29, "DlpHead_t read less", reason::kHeaderCut);
constexpr ReadFailure kVrxHeadShort = readShort(43, "VrxFileHeader_t read less", reason::kHeaderCut);
constexpr ReadFailure kSecondHeadPastEnd = documentWrong(53, reason::kSecondPreviewPastEnd);
constexpr PreviewFailures kPreviewFailures = previewFailures(
    /* headShort */ 64, /* sizeWrong */ 72, /* dataOffsetWrong */ 93, /* dataShort */ 104, key::kPreview);

// The first word of the newer layout, in which the preview header has one of two fixed places.
constexpr quint32 kVrxMagic = 0x12FD0107;
constexpr qint64 kPreviewHeadOffset = 328;
constexpr qint64 kPreviewHeadOffsetWithFlag = 336;

struct DlpHead_t : LittleEndianBlock<112> {
    quint32 magic() const { return field<quint32, 0>(); }
    qint32 previewHeadOffset() const { return field<qint32, 60>(); }
    qint32 secondHeadOffset() const { return field<qint32, 72>(); }
};

struct VrxFileHeader_t : LittleEndianBlock<40> {
    quint16 layoutFlag() const { return field<quint16, 34>(); }
};

} // namespace

FailureLines VrxFileThumbnail::failures()
{
    return kPreviewFailures.after({kCannotOpen, kDlpHeadShort, kVrxHeadShort, kSecondHeadPastEnd});
}

void VrxFileThumbnail::readFile()
{
    openFile(kCannotOpen);
    const auto dlpHead = readHead<DlpHead_t>(kDlpHeadShort);
    qint64 headOffset = dlpHead.previewHeadOffset();
    if (dlpHead.magic() == kVrxMagic) {
        m_file.seek(0);
        const auto vrxHead = readHead<VrxFileHeader_t>(kVrxHeadShort);
        headOffset = vrxHead.layoutFlag() != 0 ? kPreviewHeadOffsetWithFlag : kPreviewHeadOffset;
    } else if (dlpHead.secondHeadOffset() >= m_file.size()) {
        // Not the offset that is followed: files whose second one lies past the end count as damaged as a whole.
        fail(kSecondHeadPastEnd);
    }
    const PreviewBlock preview = loadPreviewBlock(headOffset, kPreviewFailures);
    m_image = fittedToThumbnail(decodeRunLengthPreview(preview, PreviewShading::Dark, 0));
}

} // namespace zr
