// SPDX-License-Identifier: MIT
#include "tools/samples/svgx_bytes.h"

#include "tools/samples/drawn_solids.h"
#include "tools/samples/put_bytes.h"

namespace zr::samples
{

QByteArray svgxBytes(const SvgxParts& parts)
{
    QByteArray bytes(kSvgxHeadBytes + kSvgxBmpBytes, '\0');
    putLittleEndian<qint32>(bytes, 16, parts.previewOffset.value_or(kSvgxHeadBytes));
    putBytes(bytes, kSvgxHeadBytes, parts.bmp);
    return bytes;
}

QByteArray bmpBytes(const QImage& picture)
{
    constexpr int kFileHeadBytes = 14;
    constexpr int kInfoHeadBytes = 40;
    constexpr int kPixels = kFileHeadBytes + kInfoHeadBytes;
    constexpr qint16 kBitsPerPixel = 24;
    const int stride = (picture.width() * 3 + 3) / 4 * 4;

    QByteArray bytes(kPixels + stride * picture.height(), '\0');
    putBytes(bytes, 0, "BM");
    putLittleEndian<qint32>(bytes, 2, bytes.size());
    putLittleEndian<qint32>(bytes, 10, kPixels);
    putLittleEndian<qint32>(bytes, 14, kInfoHeadBytes);
    putLittleEndian<qint32>(bytes, 18, picture.width());
    putLittleEndian<qint32>(bytes, 22, picture.height());
    putLittleEndian<qint16>(bytes, 26, 1);
    putLittleEndian<qint16>(bytes, 28, kBitsPerPixel);
    for (int y = 0; y < picture.height(); ++y) {
        const int line = kPixels + stride * (picture.height() - 1 - y);
        char* pixel = bytes.data() + line;
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb colour = picture.pixel(x, y);
            *pixel++ = static_cast<char>(qBlue(colour));
            *pixel++ = static_cast<char>(qGreen(colour));
            *pixel++ = static_cast<char>(qRed(colour));
        }
    }
    return bytes;
}

namespace
{

QByteArray spinningTopSvgx()
{
    SvgxParts parts;
    parts.bmp = bmpBytes(drawSolid(Solid::SpinningTop, 44, 44));
    return svgxBytes(parts);
}

} // namespace

std::vector<SampleFile> svgxSamples()
{
    return {{"spinning-top.svgx", spinningTopSvgx}};
}

} // namespace zr::samples
