// SPDX-License-Identifier: MIT
#include "tools/samples/photons_bytes.h"

#include "tools/samples/drawn_solids.h"
#include "tools/samples/preview_bytes.h"
#include "tools/samples/put_bytes.h"

namespace zr::samples
{

QByteArray photonsBytes(const PhotonsParts& parts)
{
    constexpr double kLayerHeight = 0.05;
    const int lengthBytes = 4;
    const int head = lengthBytes + parts.version.size();
    QByteArray bytes;
    putBigEndian<quint32>(bytes, 0, parts.versionLength.value_or(static_cast<quint32>(parts.version.size())));
    putBytes(bytes, lengthBytes, parts.version);
    putBytes(bytes, head, QByteArray(kPhotonsHeadBytes, '\0'));
    putBigEndian(bytes, head, kLayerHeight);
    putBigEndian<qint32>(bytes, head + 76, parts.width);
    putBigEndian<qint32>(bytes, head + 84, parts.height);
    return bytes + parts.pixels;
}

PhotonsParts photonsPicture(const QImage& picture)
{
    PhotonsParts parts;
    parts.width = picture.width();
    parts.height = picture.height();
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb colour = picture.pixel(x, y);
            const int bits = qRed(colour) >> 3 | (qGreen(colour) >> 2) << 5 | (qBlue(colour) >> 3) << 11;
            parts.pixels += wordBytes({static_cast<quint16>(bits)});
        }
    }
    return parts;
}

namespace
{

QByteArray bottlePhotons()
{
    return photonsBytes(photonsPicture(drawSolid(Solid::Bottle, 224, 168)));
}

} // namespace

std::vector<SampleFile> photonsSamples()
{
    return {{"bottle.photons", bottlePhotons}};
}

} // namespace zr::samples
