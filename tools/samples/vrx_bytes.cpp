// SPDX-License-Identifier: MIT
#include "tools/samples/vrx_bytes.h"

#include "tools/samples/drawn_solids.h"
#include "tools/samples/put_bytes.h"

namespace zr::samples
{
namespace
{

constexpr quint32 kFixedPlaceMagic = 0x12FD0107;

QByteArray dlpBytes(const VrxParts& parts)
{
    QByteArray bytes(parts.headBytes, '\0');
    putLittleEndian<quint32>(bytes, 0, parts.dlpMagic);
    putLittleEndian<qint32>(bytes, 60, parts.previewHeadOffset.value_or(parts.headBytes));
    putLittleEndian<qint32>(bytes, 72, parts.secondHeadOffset.value_or(parts.headBytes));
    putPreview(bytes, parts.headBytes, parts.preview);
    return bytes;
}

QByteArray fixedPlaceBytes(const VrxParts& parts, int headOffset, quint16 layoutFlag)
{
    QByteArray bytes;
    putLittleEndian<quint32>(bytes, 0, kFixedPlaceMagic);
    putLittleEndian<quint16>(bytes, 34, layoutFlag);
    putPreview(bytes, headOffset, parts.preview);
    return bytes;
}

} // namespace

QByteArray vrxBytes(const VrxParts& parts)
{
    switch (parts.layout) {
    case VrxParts::Layout::PreviewAt328:
        return fixedPlaceBytes(parts, 328, 0);
    case VrxParts::Layout::PreviewAt336:
        return fixedPlaceBytes(parts, 336, 1);
    case VrxParts::Layout::Dlp:
        break;
    }
    return dlpBytes(parts);
}

QByteArray oneColourVrxBytes(quint16 colour)
{
    VrxParts parts;
    parts.preview.width = 2;
    parts.preview.height = 2;
    parts.preview.data = wordBytes({0, colour, colour, colour});
    return vrxBytes(parts);
}

namespace
{

QByteArray rookVrx(VrxParts::Layout layout, int width, int height)
{
    VrxParts parts;
    parts.layout = layout;
    parts.preview = runLengthPreview(drawSolid(Solid::Rook, width, height));
    return vrxBytes(parts);
}

} // namespace

std::vector<SampleFile> vrxSamples()
{
    return {
        {"rook.vrx", [] { return rookVrx(VrxParts::Layout::Dlp, 400, 400); }},
        {"rook-wide.vrx", [] { return rookVrx(VrxParts::Layout::PreviewAt328, 290, 168); }},
        {"rook.vrxdlp", [] { return rookVrx(VrxParts::Layout::PreviewAt336, 300, 400); }},
    };
}

} // namespace zr::samples
