// SPDX-License-Identifier: MIT
#include "tools/samples/slc_bytes.h"

#include "tools/samples/model_shapes.h"
#include "tools/samples/put_bytes.h"

namespace zr::samples
{
namespace
{

template <typename Number>
void append(QByteArray& bytes, Number number)
{
    putLittleEndian(bytes, bytes.size(), number);
}

} // namespace

QByteArray slcBoundary(const std::vector<ContourPoint>& points)
{
    return slcBoundary(points, static_cast<quint32>(points.size()));
}

QByteArray slcBoundary(const std::vector<ContourPoint>& points, quint32 announced)
{
    QByteArray bytes;
    append(bytes, announced);
    append(bytes, quint32{0});
    for (const ContourPoint& point : points) {
        append(bytes, point[0]);
        append(bytes, point[1]);
    }
    return bytes;
}

QByteArray slcLayer(float z, const QByteArray& boundaries, quint32 announced)
{
    QByteArray bytes;
    append(bytes, z);
    append(bytes, announced);
    return bytes + boundaries;
}

QByteArray slcHead(const SlcParts& parts)
{
    QByteArray bytes = parts.head + "\r\n\x1a" + parts.reserved;
    append(bytes, static_cast<quint8>(parts.samplingTable.size()));
    for (const SlcParts::Entry& entry : parts.samplingTable) {
        for (const float field : {entry.minimumZ, entry.thickness, 0.0F, 0.0F})
            append(bytes, field);
    }
    return bytes;
}

QByteArray slcEnd()
{
    return slcLayer(0, QByteArray(), 0xFFFFFFFF);
}

QByteArray slcBytes(const SlcParts& parts)
{
    QByteArray bytes = slcHead(parts);
    for (const ContourLayer& layer : parts.layers) {
        QByteArray boundaries;
        for (const auto& contour : layer.contours)
            boundaries += slcBoundary(contour);
        bytes += slcLayer(layer.z, boundaries, static_cast<quint32>(layer.contours.size()));
    }
    return parts.endMark ? bytes + slcEnd() : bytes;
}

namespace
{

QByteArray towerSlc()
{
    SlcParts parts;
    parts.layers = tower();
    return slcBytes(parts);
}

} // namespace

std::vector<SampleFile> slcSamples()
{
    return {{"tower.slc", towerSlc}};
}

} // namespace zr::samples
