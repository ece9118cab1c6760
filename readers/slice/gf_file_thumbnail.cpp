// SPDX-License-Identifier: MIT
#include "readers/slice/gf_file_thumbnail.h"

#include "readers/slice/preview_shading.h"
#include "readers/slice/slice_failures.h"
#include "readers/slice/thumbnail_canvas.h"

#include <new>

namespace zr
{
namespace
{

constexpr ReadFailure kCannotOpen = cannotOpen(20);
constexpr ReadFailure kHeadShort = readShort(29, "GfHead_t read less", reason::kHeaderCut);
constexpr ReadFailure kPreviewPastEnd = documentWrong(36, reason::kPreviewPastEnd);
constexpr PreviewFailures kPreviewFailures = previewFailures(
    /* headShort */ 46, /* sizeWrong */ 54, /* dataOffsetWrong */ 75, /* dataShort */ 83, key::kReadShort);

struct GfHead_t : LittleEndianBlock<216> {
    qint32 previewHeadOffset() const { return field<qint32, 48>(); }
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
// serves as that colour. Pixels that the data does not reach stay background.
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
    return kPreviewFailures.after({kCannotOpen, kHeadShort, kPreviewPastEnd});
}

void GfFileThumbnail::readFile()
{
    openFile(kCannotOpen);
    const auto head = readHead<GfHead_t>(kHeadShort);
    if (head.previewHeadOffset() >= m_file.size())
        fail(kPreviewPastEnd);
    const PreviewBlock preview = loadPreviewBlock(head.previewHeadOffset(), kPreviewFailures);
    m_image = centredOnThumbnail(fittedToThumbnail(shadedPicture(preview)), previewBackground(PreviewShading::Dark));
}

} // namespace zr
