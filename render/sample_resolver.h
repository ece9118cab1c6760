// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "render/sample_band.h"
#include "render/sample_pattern.h"

#include <QImage>

#include <vector>

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

    /// Paints the pixels of the band that are not all background.
    void resolve(const SampleBand& band);

private:
    /// What is seen of a triangle in a pixel; all of it has the colour of its first sample.
    struct Part {
        const float* positions;
        int column;
        int x, y;  ///< of that sample, in steps from the lower left corner of the picture
        int depth; ///< in Sample::kDepthSteps
        int samples;
        QRgb colour;
    };
    void findParts(const Sample* samples, int column, int row);
    void shadeParts();
    void paintParts(QRgb* pixels) const;

    const FlatShading& m_shading;
    const TriangleStream& m_stream;
    const SamplePattern& m_pattern;
    QImage& m_picture;
    std::vector<Part> m_parts; ///< of one row of pixels, from left to right
};

} // namespace zr
