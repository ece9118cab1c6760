#pragma once

#include "core/file_reader_base.h"
#include "readers/slice/little_endian_block.h"

#include <functional>
#include <vector>

namespace zr
{

/// The header of an embedded preview: the picture's size, and where its pixel data lies in the file.
struct DlpPreviewHead_t {
    using Block = LittleEndianBlock<32>;

    DlpPreviewHead_t() = default;
    explicit DlpPreviewHead_t(const Block& block);

    qint32 width = 0;      ///< pixels
    qint32 height = 0;     ///< pixels
    qint32 dataOffset = 0; ///< from the start of the file
    qint32 dataSize = 0;   ///< bytes
};

/// A checked preview header and its pixel data.
struct PreviewBlock {
    static constexpr qint32 kMaxSidePx = 10000;

    DlpPreviewHead_t head;             ///< width and height are in 1..kMaxSidePx
    std::vector<uchar> src_RGB_Buffer; ///< head.dataSize bytes
};

/// What differs between the formats that embed a preview block.
struct PreviewBlockRules {
    enum class FirstCheck { Size, DataOffset };
    enum class ZeroDataOffset { IsAnOffset, MeansNoPreview };

    FirstCheck firstCheck;
    ZeroDataOffset zeroDataOffset;
    ReadFailure headShort;
    ReadFailure sizeWrong;
    ReadFailure dataOffsetWrong;
    ReadFailure dataShort;
};

/// Reads and checks the preview block whose header lies at `headOffset`, then closes the file.
///
/// Negative offsets are taken as they come: seeking to one fails, and reading goes on where the file stands.
/// Calls `fail`, which must throw, for what `rules` lists, and leaves the file open then. Throws std::bad_alloc for a
/// negative data size.
PreviewBlock loadPreviewBlock(QFile& file, qint64 headOffset, const PreviewBlockRules& rules,
                              const std::function<void(const ReadFailure&)>& fail);

} // namespace zr
