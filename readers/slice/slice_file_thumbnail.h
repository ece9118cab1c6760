// SPDX-License-Identifier: MIT
#pragma once

#include "core/file_reader_base.h"
#include "readers/slice/preview_block.h"

namespace zr
{

struct PreviewFailures;

/// What the readers of slice files share: the file is opened, headers are read from it, and the preview that it embeds
/// becomes the picture. The failures that the functions take are the format's own; every one of them is logged and
/// thrown with the file still open.
class SliceFileThumbnail : public FileReaderBase
{
public:
    using FileReaderBase::FileReaderBase;

    QImage previewImage() override { return m_image; }

protected:
    /// How each readFile() begins: without a picture, and with the file open. A file that is open already stays where
    /// it is.
    void openFile(const ReadFailure& cannotOpen);

    /// Reads a header, which is a LittleEndianBlock, at the file's current position.
    template <typename Head>
    Head readHead(const ReadFailure& headShort)
    {
        Head head;
        if (!head.readFrom(m_file))
            fail(headShort);
        return head;
    }

    /// Reads `count` bytes at the file's current position with one read. Allocates no memory for bytes that the file
    /// does not hold: the size field of a small file may announce 2 GiB.
    std::vector<uchar> readBytes(qint64 count, const ReadFailure& bytesShort);

    /// Reads and checks the preview block whose header lies at `headOffset`, then closes the file.
    ///
    /// Negative offsets are taken as they come: seeking to one fails, and reading goes on at the file's current
    /// position. Throws std::bad_alloc for a negative data size.
    PreviewBlock loadPreviewBlock(qint64 headOffset, const PreviewFailures& failures);
};

} // namespace zr
