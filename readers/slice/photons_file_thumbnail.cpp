#include "readers/slice/photons_file_thumbnail.h"

#include "core/reasons.h"
#include "readers/slice/read_bytes.h"
#include "readers/slice/thumbnail_canvas.h"

#include <QtEndian>

#include <array>
#include <limits>
#include <new>

namespace zr
{
namespace
{

using Rest = FailureLine::Rest;

constexpr ReadFailure kCannotOpen{{23, "file open errr ", Rest::None, reason::kCannotBeOpened}, "openFileErr"};
constexpr ReadFailure kLengthShort{{39, "file read less", Rest::PathOnNextLine, reason::kHeaderWrongOrCut},
                                   "fileReadLess"};
constexpr ReadFailure kVersionShort{{34, "file version read less", Rest::PathOnNextLine, reason::kHeaderCut},
                                    "fileReadLess"};
constexpr ReadFailure kHeadShort{{96, "file head read error", Rest::PathOnNextLine, reason::kHeaderCut}, "filePrevErr"};
constexpr ReadFailure kPixelsShort{{48, "rgbBuf read less", Rest::PathOnNextLine, reason::kPreviewCutOrSizeWrong},
                                   "fileReadLess"};

constexpr int kPixelBytes = 2;

// The big-endian values behind the version text, of which two are used.
constexpr int kHeadValueBytes[] = {8, 8, 8, 8, 8, 4, 8, 8, 8, 8, 4, 4, 4, 4};
constexpr int kWidthValue = 10;
constexpr int kHeightValue = 12;

struct PreviewSize {
    qint32 width = 0;
    qint32 height = 0;

    // Both sizes negative make a positive number of bytes too, which the file has to hold, but no pixel.
    bool hasPixels() const { return width > 0 && height > 0; }
};

// False when a value has no byte left in the file. One that is cut short counts as read.
bool readHeadValues(QFile& file, PreviewSize& size)
{
    int value = 0;
    for (const int valueBytes : kHeadValueBytes) {
        std::array<char, 8> bytes{};
        if (file.read(bytes.data(), valueBytes) <= 0)
            return false;
        if (value == kWidthValue)
            size.width = qFromBigEndian<qint32>(bytes.data());
        else if (value == kHeightValue)
            size.height = qFromBigEndian<qint32>(bytes.data());
        ++value;
    }
    return true;
}

// False when the file does not hold the pixels, or when their bytes do not fit the format's signed 32-bit count.
bool readPixels(QFile& file, const PreviewSize& size, std::vector<uchar>& pixels)
{
    const qint64 count = qint64{size.width} * size.height;
    if (count < 0 || count > std::numeric_limits<qint32>::max() / kPixelBytes)
        return false;
    return count == 0 || readBytes(file, count * kPixelBytes, pixels);
}

QRgb pixelColour(const uchar* pixel)
{
    const int bits = qFromLittleEndian<quint16>(pixel);
    return qRgb((bits & 0x1F) << 3, (bits >> 3) & 0xFC, (bits >> 8) & 0xF8);
}

QImage decodedPicture(const PreviewSize& size, const std::vector<uchar>& pixels)
{
    if (!size.hasPixels())
        return QImage();
    QImage picture(size.width, size.height, QImage::Format_RGB32);
    if (picture.isNull())
        throw std::bad_alloc();
    const uchar* pixel = pixels.data();
    for (int y = 0; y < size.height; ++y) {
        auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < size.width; ++x, pixel += kPixelBytes)
            line[x] = pixelColour(pixel);
    }
    return picture;
}

} // namespace

FailureLines PhotonsFileThumbnail::failures()
{
    return {kCannotOpen, kLengthShort, kVersionShort, kHeadShort, kPixelsShort};
}

void PhotonsFileThumbnail::readFile()
{
    m_image = QImage();
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly))
        fail(kCannotOpen);

    std::array<char, 4> lengthField{};
    const bool hasLength = m_file.read(lengthField.data(), lengthField.size()) == qint64{lengthField.size()};
    const auto versionLength = qFromBigEndian<quint32>(lengthField.data());
    if (!hasLength || versionLength == 0)
        fail(kLengthShort);
    // Nothing looks at the version text, and its length may say 4 GiB. A text that the file cuts short is one too.
    if (m_file.skip(versionLength) <= 0)
        fail(kVersionShort);

    PreviewSize size;
    if (!readHeadValues(m_file, size))
        fail(kHeadShort);
    std::vector<uchar> pixels;
    if (!readPixels(m_file, size, pixels))
        fail(kPixelsShort);
    m_file.close();

    // The picture's margins take the colour of its pixel (1, 1), which is mostly background. Pictures without such a
    // pixel have always got the bytes of the length field for a colour.
    const QImage picture = decodedPicture(size, pixels);
    const bool hasMarginPixel = picture.width() > 1 && picture.height() > 1;
    const QRgb margin = hasMarginPixel ? picture.pixel(1, 1) : qFromLittleEndian<QRgb>(lengthField.data());
    m_image = centredOnThumbnail(fittedToThumbnail(picture), margin);
}

QImage PhotonsFileThumbnail::previewImage()
{
    return m_image;
}

} // namespace zr
