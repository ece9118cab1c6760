// SPDX-License-Identifier: MIT
#include "readers/slice/photons_file_thumbnail.h"

#include "readers/slice/slice_failures.h"
#include "readers/slice/thumbnail_canvas.h"

#include <limits>
#include <new>
#include <optional>

namespace zr
{
namespace
{

constexpr ReadFailure kCannotOpen = cannotOpen(23);
constexpr ReadFailure kLengthShort = readShort(39, "file read less", reason::kHeaderWrongOrCut);
constexpr ReadFailure kVersionShort = readShort(34, "file version read less", reason::kHeaderCut);
constexpr ReadFailure kHeadShort = previewWrong(96, "file head read error", reason::kHeaderCut);
constexpr ReadFailure kPixelsShort = readShort(48, "rgbBuf read less", reason::kPreviewCutOrSizeWrong);

constexpr int kPixelBytes = 2;

// The big-endian values after the version text, of which two are used.
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

// Empty when they do not fit the format's signed 32-bit count.
std::optional<qint64> pixelBytes(const PreviewSize& size)
{
    const qint64 pixels = qint64{size.width} * size.height;
    if (pixels < 0 || pixels > std::numeric_limits<qint32>::max() / kPixelBytes)
        return std::nullopt;
    return pixels * kPixelBytes;
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
    openFile(kCannotOpen);
    std::array<char, 4> lengthField{};
    const bool hasLength = m_file.read(lengthField.data(), lengthField.size()) == qint64{lengthField.size()};
    const auto versionLength = qFromBigEndian<quint32>(lengthField.data());
    if (!hasLength || versionLength == 0)
        fail(kLengthShort);
    // The version text is not used, and its length may be 4 GiB. A text that the file cuts short counts as one.
    if (m_file.skip(versionLength) <= 0)
        fail(kVersionShort);

    PreviewSize size;
    if (!readHeadValues(m_file, size))
        fail(kHeadShort);
    const auto bytes = pixelBytes(size);
    if (!bytes)
        fail(kPixelsShort);
    const std::vector<uchar> pixels = readBytes(*bytes, kPixelsShort);
    m_file.close();

    // The picture's margins take the colour of its pixel (1, 1), which is mostly background. Pictures without such a
    // pixel have always had the bytes of the length field as their colour.
    const QImage picture = decodedPicture(size, pixels);
    const bool hasMarginPixel = picture.width() > 1 && picture.height() > 1;
    const QRgb margin = hasMarginPixel ? picture.pixel(1, 1) : qFromLittleEndian<QRgb>(lengthField.data());
    m_image = centredOnThumbnail(fittedToThumbnail(picture), margin);
}

} // namespace zr
