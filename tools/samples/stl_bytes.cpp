// SPDX-License-Identifier: MIT
#include "tools/samples/stl_bytes.h"

#include "tools/samples/model_shapes.h"
#include "tools/samples/put_bytes.h"

#include <cmath>

namespace zr::samples
{
namespace
{

ModelPoint normalOf(const ModelTriangle& triangle)
{
    const auto& [a, b, c] = triangle;
    const double ux = double{b[0]} - a[0], uy = double{b[1]} - a[1], uz = double{b[2]} - a[2];
    const double vx = double{c[0]} - b[0], vy = double{c[1]} - b[1], vz = double{c[2]} - b[2];
    const double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
    const double length = std::sqrt(x * x + y * y + z * z);
    if (length == 0)
        return {};
    return {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

QByteArray textOf(const ModelPoint& point)
{
    QByteArray text;
    for (const float number : point)
        text += ' ' + QByteArray::number(double{number}, 'g', 9);
    return text + '\n';
}

} // namespace

QByteArray binaryStlBytes(const std::vector<ModelTriangle>& triangles)
{
    constexpr int headerBytes = 80;
    QByteArray bytes(headerBytes, ' ');
    const auto append = [&bytes](auto number) { putLittleEndian(bytes, bytes.size(), number); };
    append(static_cast<quint32>(triangles.size()));
    for (const ModelTriangle& triangle : triangles) {
        for (const ModelPoint& point : {normalOf(triangle), triangle[0], triangle[1], triangle[2]}) {
            for (const float number : point)
                append(number);
        }
        append(quint16{0});
    }
    return bytes;
}

QByteArray asciiStlBytes(const std::vector<ModelTriangle>& triangles)
{
    QByteArray text = "solid sample\n";
    for (const ModelTriangle& triangle : triangles) {
        text += "  facet normal" + textOf(normalOf(triangle)) + "    outer loop\n";
        for (const ModelPoint& point : triangle)
            text += "      vertex" + textOf(point);
        text += "    endloop\n  endfacet\n";
    }
    return text + "endsolid sample\n";
}

std::vector<SampleFile> stlSamples()
{
    return {
        {"gear.stl", [] { return binaryStlBytes(gear()); }},
        {"vase-ascii.stl", [] { return asciiStlBytes(twistedVase()); }},
    };
}

} // namespace zr::samples
