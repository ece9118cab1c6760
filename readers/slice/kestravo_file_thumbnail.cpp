#include "readers/slice/kestravo_file_thumbnail.h"

#include "readers/slice/preview_block.h"
#include "readers/slice/run_length_preview.h"
#include "readers/slice/thumbnail_canvas.h"

namespace zr
{
namespace
{

using Path = ReadFailure::Path;
using Rules = PreviewBlockRules;

constexpr ReadFailure kCannotOpen{18, "file open errr ", Path::None, "openFileErr"};
constexpr ReadFailure kHeadShort{28, "read file head less", Path::OnNextLine, "fileReadLess"};
constexpr ReadFailure kNoPreview{33, "thumbnail offset is zero", Path::Appended, "filePrevErr"};
constexpr ReadFailure kPreviewPastEnd{39, "There is something wrong with the document", Path::OnNextLine,
                                      "filePrevErr"};
constexpr PreviewBlockRules kPreviewRules{
    Rules::FirstCheck::DataOffset,
    Rules::ZeroDataOffset::MeansNoPreview,
    /* headShort */ {50, "svgx file head read less", Path::OnNextLine, "fileReadLess"},
    /* sizeWrong */ {62, "prev size is unlawful", Path::OnNextLine, "filePrevErr"},
    /* dataOffsetWrong */ {56, "prev offset is unlawful", Path::OnNextLine, "filePrevErr"},
    /* dataShort */ {80, "src_RGB_Buffer read less", Path::OnNextLine, "fileReadLess"},
};

struct KestravoHead_t {
    using Block = LittleEndianBlock<412>;

    explicit KestravoHead_t(const Block& block) : thumbnailOffset(block.field<qint32, 12>()) {}

    qint32 thumbnailOffset;
};

} // namespace

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
