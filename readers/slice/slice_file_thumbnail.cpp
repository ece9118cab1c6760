// SPDX-License-Identifier: MIT
#include "readers/slice/slice_file_thumbnail.h"

#include "readers/slice/slice_failures.h"

#include <new>

namespace zr
{
namespace
{

using DataOffsetCheck = PreviewFailures::DataOffsetCheck;

bool isValidSide(qint32 side)
{
    return side >= 1 && side <= PreviewBlock::kMaxSidePx;
}

} // namespace

void SliceFileThumbnail::openFile(const ReadFailure& cannotOpen)
{
    m_image = QImage();
    if (!m_file.isOpen() && !openSource())
        fail(cannotOpen);
}

std::vector<uchar> SliceFileThumbnail::readBytes(qint64 count, const ReadFailure& bytesShort)
{
    if (m_file.size() - m_file.pos() < count)
        fail(bytesShort);
    std::vector<uchar> bytes(static_cast<std::size_t>(count));
    if (m_file.read(reinterpret_cast<char*>(bytes.data()), count) != count)
        fail(bytesShort);
    return bytes;
}

PreviewBlock SliceFileThumbnail::loadPreviewBlock(qint64 headOffset, const PreviewFailures& failures)
{
    m_file.seek(headOffset);
    const DlpPreviewHead_t head(readHead<DlpPreviewHead_t::Block>(failures.headShort));
    const bool offsetFirst = failures.dataOffsetCheck == DataOffsetCheck::BeforeSizeAndNotZero;
    const bool offsetWrong = head.dataOffset >= m_file.size() || (offsetFirst && head.dataOffset == 0);

    if (offsetFirst && offsetWrong)
        fail(failures.dataOffsetWrong);
    if (!isValidSide(head.width) || !isValidSide(head.height))
        fail(failures.sizeWrong);
    if (head.dataSize < 0)
        throw std::bad_alloc();
    if (offsetWrong)
        fail(failures.dataOffsetWrong);

    m_file.seek(head.dataOffset);
    PreviewBlock preview{head, readBytes(head.dataSize, failures.dataShort)};
    m_file.close();
    return preview;
}

} // namespace zr
