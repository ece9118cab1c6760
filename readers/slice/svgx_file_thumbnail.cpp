// SPDX-License-Identifier: MIT
#include "readers/slice/svgx_file_thumbnail.h"

#include "readers/slice/embedded_bmp.h"
#include "readers/slice/slice_failures.h"
#include "readers/slice/thumbnail_canvas.h"

namespace zr
{
namespace
{

constexpr ReadFailure kCannotOpen = cannotOpen(18);
constexpr ReadFailure kHeadShort = readShort(27, "file head read error", reason::kHeaderCut);
constexpr ReadFailure kNoPreview = documentWrong(33, reason::kNoPreviewOrPastEnd);
constexpr ReadFailure kPreviewShort = readShort(51, "rgbBuf read less", reason::kPreviewCut);

// Always this much is read: a 24-bit BMP file of 44 x 44 pixels. Others have to fit into it.
constexpr int kBmpBytes = 5862;

struct SvgxHead_t : LittleEndianBlock<28> {
    qint32 previewOffset() const { return field<qint32, 16>(); }
};

} // namespace

FailureLines SvgxFileThumbnail::failures()
{
    return {kCannotOpen, kHeadShort, kNoPreview, kPreviewShort};
}

void SvgxFileThumbnail::readFile()
{
    openFile(kCannotOpen);
    const auto head = readHead<SvgxHead_t>(kHeadShort);
    if (head.previewOffset() >= m_file.size() || head.previewOffset() == 0)
        fail(kNoPreview);

    // A negative offset passes, the seek fails, and the bytes after the header are read.
    m_file.seek(head.previewOffset());
    const QByteArray bmp = m_file.read(kBmpBytes);
    if (bmp.size() != kBmpBytes)
        fail(kPreviewShort);
    m_file.close();

    // Bytes that are not a BMP file give a null picture, whose pixel(0, 0) is a colour all the same.
    QImage fitted = fittedToThumbnail(pictureOfBmp(bmp));
    completePalette(fitted);
    m_image = centredOnThumbnail(fitted, fitted.pixel(0, 0));
}

} // namespace zr
