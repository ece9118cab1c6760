#include "tools/samples/vrx_bytes.h"

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

} // namespace zr::samples
