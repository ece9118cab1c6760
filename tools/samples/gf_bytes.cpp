// SPDX-License-Identifier: MIT
#include "tools/samples/gf_bytes.h"

#include "tools/samples/drawn_solids.h"
#include "tools/samples/put_bytes.h"

namespace zr::samples
{

QByteArray gfBytes(const GfParts& parts)
{
    constexpr int kHeadBytes = 216;
    QByteArray bytes(kHeadBytes, '\0');
    putLittleEndian<qint32>(bytes, 48, parts.previewHeadOffset.value_or(kHeadBytes));
    putPreview(bytes, kHeadBytes, parts.preview);
    return bytes;
}

PreviewParts channelWordPreview(const QImage& picture)
{
    PreviewParts preview;
    preview.width = picture.width();
    preview.height = picture.height();
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb colour = picture.pixel(x, y);
            for (const int channel : {qRed(colour), qGreen(colour), qBlue(colour)})
                preview.data += wordBytes({static_cast<quint16>(channel)});
        }
    }
    return preview;
}

namespace
{

QByteArray gobletGf()
{
    GfParts parts;
    parts.preview = channelWordPreview(drawSolid(Solid::Goblet, 290, 240));
    return gfBytes(parts);
}

} // namespace

std::vector<SampleFile> gfSamples()
{
    return {{"goblet.gf", gobletGf}};
}

} // namespace zr::samples
