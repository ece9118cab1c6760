#include "readers/slice/preview_block.h"

#include "readers/slice/read_bytes.h"

#include <new>

namespace zr
{
namespace
{

bool isValidSide(qint32 side)
{
    return side >= 1 && side <= PreviewBlock::kMaxSidePx;
}

bool isValidDataOffset(qint32 offset, const QFile& file, PreviewBlockRules::ZeroDataOffset zero)
{
    if (offset == 0 && zero == PreviewBlockRules::ZeroDataOffset::MeansNoPreview)
        return false;
    return offset < file.size();
}

} // namespace

DlpPreviewHead_t::DlpPreviewHead_t(const Block& block)
    : width(block.field<qint32, 0>()), height(block.field<qint32, 4>()), dataOffset(block.field<qint32, 8>()),
      dataSize(block.field<qint32, 12>())
{
}

PreviewBlock loadPreviewBlock(QFile& file, qint64 headOffset, const PreviewBlockRules& rules,
                              const std::function<void(const ReadFailure&)>& fail)
{
    const auto checkDataOffset = [&](qint32 offset) {
        if (!isValidDataOffset(offset, file, rules.zeroDataOffset))
            fail(rules.dataOffsetWrong);
    };

    file.seek(headOffset);
    const auto head = readHead<DlpPreviewHead_t>(file);
    if (!head)
        fail(rules.headShort);

    if (rules.firstCheck == PreviewBlockRules::FirstCheck::DataOffset)
        checkDataOffset(head->dataOffset);
    if (!isValidSide(head->width) || !isValidSide(head->height))
        fail(rules.sizeWrong);
    if (head->dataSize < 0)
        throw std::bad_alloc();
    if (rules.firstCheck == PreviewBlockRules::FirstCheck::Size)
        checkDataOffset(head->dataOffset);

    PreviewBlock preview{*head, {}};
    file.seek(head->dataOffset);
    if (!readBytes(file, head->dataSize, preview.src_RGB_Buffer))
        fail(rules.dataShort);
    file.close();
    return preview;
}

} // namespace zr
