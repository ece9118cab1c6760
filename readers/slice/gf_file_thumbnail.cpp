#include "readers/slice/gf_file_thumbnail.h"

#include "core/reasons.h"
#include "readers/slice/preview_block.h"
#include "readers/slice/preview_shading.h"
#include "readers/slice/thumbnail_canvas.h"

#include <new>

namespace zr
{
namespace
{

using Rest = FailureLine::Rest;
using Rules = PreviewBlockRules;

constexpr char kDocumentWrong[] = "There is something wrong with the document";

constexpr ReadFailure kCannotOpen{{20, "file open errr ", Rest::None, reason::kCannotBeOpened}, "openFileErr"};
constexpr ReadFailure kHeadShort{{29, "GfHead_t read less", Rest::PathOnNextLine, reason::kHeaderCut}, "fileReadLess"};
constexpr ReadFailure kPreviewPastEnd{{36, kDocumentWrong, Rest::PathOnNextLine, reason::kPreviewPastEnd},
                                      "filePrevErr"};
constexpr PreviewBlockRules kPreviewRules{
    Rules::FirstCheck::Size,
    Rules::ZeroDataOffset::IsAnOffset,
    /* headShort */
    {{46, "DlpPreviewHead_t read less", Rest::PathOnNextLine, reason::kPreviewHeaderCut}, "fileReadLess"},
    /* sizeWrong */ {{54, kDocumentWrong, Rest::PathOnNextLine, reason::kPreviewSizeWrong}, "filePrevErr"},
    /* dataOffsetWrong */ {{75, kDocumentWrong, Rest::PathOnNextLine, reason::kPixelsPastEnd}, "filePrevErr"},
    /* dataShort */ {{83, "src_RGB_Buffer read less", Rest::PathOnNextLine, reason::kPreviewCut}, "fileReadLess"},
};

struct GfHead_t {
    using Block = LittleEndianBlock<216>;

    explicit GfHead_t(const Block& block) : previewHeadOffset(block.field<qint32, 48>()) {}

    qint32 previewHeadOffset;
};

// One pixel as it is stored. Channels are meant to have 8 bits, but larger ones are taken as they come.
struct ChannelWords {
    static constexpr int kBytes = 6;

    explicit ChannelWords(quint16 value) : red(value), green(value), blue(value) {}
    explicit ChannelWords(const uchar* bytes)
        : red(qFromLittleEndian<quint16>(bytes)), green(qFromLittleEndian<quint16>(bytes + 2)),
          blue(qFromLittleEndian<quint16>(bytes + 4))
    {
    }

    bool operator==(const ChannelWords& other) const
    {
        return red == other.red && green == other.green && blue == other.blue;
    }

    quint16 red, green, blue;
};

void setPixel(uchar* pixel, QRgb colour)
{
    pixel[0] = static_cast<uchar>(qRed(colour));
    pixel[1] = static_cast<uchar>(qGreen(colour));
    pixel[2] = static_cast<uchar>(qBlue(colour));
}

// The shaded picture in its own size. The pixel at (1, 1) has the background's colour; for those before it, the height
// stands in. Pixels that the data does not reach stay background.
QImage shadedPicture(const PreviewBlock& preview)
{
    const int width = preview.head.width;
    const int height = preview.head.height;
    QImage picture(width, height, QImage::Format_RGB888);
    if (picture.isNull())
        throw std::bad_alloc();
    picture.fill(previewBackground(PreviewShading::Dark));

    ChannelWords key(static_cast<quint16>(height));
    const uchar* words = preview.src_RGB_Buffer.data();
    const uchar* const end = words + preview.src_RGB_Buffer.size();
    for (int y = 0; y < height; ++y) {
        uchar* pixel = picture.scanLine(y);
        for (int x = 0; x < width; ++x, pixel += 3, words += ChannelWords::kBytes) {
            if (end - words < ChannelWords::kBytes)
                return picture;
            const ChannelWords channels(words);
            if (x == 1 && y == 1)
                key = channels;
            if (channels == key)
                continue;
            const quint32 luminance = previewLuminance(channels.red, channels.green, channels.blue);
            setPixel(pixel, previewShade(PreviewShading::Dark, luminance));
        }
    }
    return picture;
}

} // namespace

FailureLines GfFileThumbnail::failures()
{
    return {kCannotOpen,
            kHeadShort,
            kPreviewPastEnd,
            kPreviewRules.headShort,
            kPreviewRules.sizeWrong,
            kPreviewRules.dataOffsetWrong,
            kPreviewRules.dataShort};
}

void GfFileThumbnail::readFile()
{
    m_image = QImage();
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly))
        fail(kCannotOpen);

    const auto head = readHead<GfHead_t>(m_file);
    if (!head)
        fail(kHeadShort);
    if (head->previewHeadOffset >= m_file.size())
        fail(kPreviewPastEnd);

    const PreviewBlock preview = loadPreviewBlock(m_file, head->previewHeadOffset, kPreviewRules,
                                                  [this](const ReadFailure& failure) { fail(failure); });
    m_image = centredOnThumbnail(fittedToThumbnail(shadedPicture(preview)), previewBackground(PreviewShading::Dark));
}

QImage GfFileThumbnail::previewImage()
{
    return m_image;
}

} // namespace zr
