#include "readers/slice/svgx_file_thumbnail.h"

#include "core/reasons.h"
#include "readers/slice/embedded_bmp.h"
#include "readers/slice/little_endian_block.h"
#include "readers/slice/thumbnail_canvas.h"

namespace zr
{
namespace
{

using Rest = FailureLine::Rest;

constexpr ReadFailure kCannotOpen{{18, "file open errr ", Rest::None, reason::kCannotBeOpened}, "openFileErr"};
constexpr ReadFailure kHeadShort{{27, "file head read error", Rest::PathOnNextLine, reason::kHeaderCut},
                                 "fileReadLess"};
constexpr ReadFailure kNoPreview{
    {33, "There is something wrong with the document", Rest::PathOnNextLine, reason::kNoPreviewOrPastEnd},
    "filePrevErr"};
constexpr ReadFailure kPreviewShort{{51, "rgbBuf read less", Rest::PathOnNextLine, reason::kPreviewCut},
                                    "fileReadLess"};

// Always this much is read: a 24-bit BMP file of 44 x 44 pixels. Others have to fit into it.
constexpr int kBmpBytes = 5862;

struct SvgxHead_t {
    using Block = LittleEndianBlock<28>;

    explicit SvgxHead_t(const Block& block) : previewOffset(block.field<qint32, 16>()) {}

    qint32 previewOffset;
};

} // namespace

FailureLines SvgxFileThumbnail::failures()
{
    return {kCannotOpen, kHeadShort, kNoPreview, kPreviewShort};
}

void SvgxFileThumbnail::readFile()
{
    m_image = QImage();
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly))
        fail(kCannotOpen);

    const auto head = readHead<SvgxHead_t>(m_file);
    if (!head)
        fail(kHeadShort);
    if (head->previewOffset >= m_file.size() || head->previewOffset == 0)
        fail(kNoPreview);

    // A negative offset passes, the seek fails, and the bytes behind the header are read.
    m_file.seek(head->previewOffset);
    const QByteArray bmp = m_file.read(kBmpBytes);
    if (bmp.size() != kBmpBytes)
        fail(kPreviewShort);
    m_file.close();

    // Bytes that are no BMP give a null picture, whose pixel(0, 0) is a colour all the same.
    QImage fitted = fittedToThumbnail(pictureOfBmp(bmp));
    completePalette(fitted);
    m_image = centredOnThumbnail(fitted, fitted.pixel(0, 0));
}

QImage SvgxFileThumbnail::previewImage()
{
    return m_image;
}

} // namespace zr
