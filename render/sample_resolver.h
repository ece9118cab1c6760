// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "render/sample_band.h"
#include "render/sample_pattern.h"

#include <QImage>

namespace zr
{

class FlatShading;
class TriangleStream;

/// Turns samples into pixels: gives colours to the triangles that are seen, and averages those of each pixel.
class SampleResolver
{
public:
    /// `picture` is a square of QImage::Format_ARGB32_Premultiplied, filled with the background.
    SampleResolver(const FlatShading& shading, const TriangleStream& stream, const SamplePattern& pattern,
                   QImage& picture)
        : m_shading(shading), m_stream(stream), m_pattern(pattern), m_picture(picture)
    {
    }

    /// Paints the pixels of the band that are not all background. The band begins and ends with whole pixels.
    void resolve(const SampleBand& band);

private:
    QRgb pixelAt(const SampleBand& band, int column, int firstRow);
    QRgb colourOf(const Sample& sample, int column, int row);

    const FlatShading& m_shading;
    const TriangleStream& m_stream;
    const SamplePattern& m_pattern;
    QImage& m_picture;
    quint32 m_triangle = Sample::kNothing; ///< the one of m_normal
    Vec4 m_normal{};
};

} // namespace zr
