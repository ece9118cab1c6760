// SPDX-License-Identifier: MIT
#include "render/sample_resolver.h"

#include "render/flat_shading.h"
#include "render/triangle_stream.h"

namespace zr
{
namespace
{

/// The channels of some opaque colours.
struct ColourSum {
    int count = 0;
    int red = 0;
    int green = 0;
    int blue = 0;

    void add(QRgb colour)
    {
        ++count;
        red += qRed(colour);
        green += qGreen(colour);
        blue += qBlue(colour);
    }

    /// Of 2 to the power of `bits` samples, the other ones of which show nothing. Premultiplied.
    QRgb average(int bits) const
    {
        const auto rounded = [bits, half = (1 << bits) / 2](int sum) { return (sum + half) >> bits; };
        return qRgba(rounded(red), rounded(green), rounded(blue), rounded(255 * count));
    }
};

/// From 0 to `steps` to the range of OpenGL's devices, -1 to 1.
double toDevice(double step, double steps)
{
    return step / steps * 2.0 - 1.0;
}

bool isAnythingAt(const SampleBand& band, int column, int beginRow, int endRow)
{
    for (int row = beginRow; row < endRow; ++row)
        if (band.row(row)[column].triangle != Sample::kNothing)
            return true;
    return false;
}

} // namespace

void SampleResolver::resolve(const SampleBand& band)
{
    const int samples = m_pattern.samples();
    for (int row = band.begin(); row < band.end(); row += samples) {
        const int fromTop = m_picture.height() - 1 - row / samples;
        auto* const pixels = reinterpret_cast<QRgb*>(m_picture.scanLine(fromTop));
        for (int column = 0; column < band.width(); ++column)
            if (isAnythingAt(band, column, row, row + samples))
                pixels[column] = pixelAt(band, column, row);
    }
}

QRgb SampleResolver::pixelAt(const SampleBand& band, int column, int firstRow)
{
    ColourSum sum;
    QRgb colour = 0;
    quint32 triangle = Sample::kNothing;
    for (int row = firstRow; row < firstRow + m_pattern.samples(); ++row) {
        const Sample& sample = band.row(row)[column];
        if (sample.triangle == Sample::kNothing)
            continue;
        // All that is seen of a triangle in a pixel has one colour.
        if (sample.triangle != triangle) {
            triangle = sample.triangle;
            colour = colourOf(sample, column, row);
        }
        sum.add(colour);
    }
    return sum.average(m_pattern.sampleBits());
}

QRgb SampleResolver::colourOf(const Sample& sample, int column, int row)
{
    if (sample.triangle != m_triangle) {
        m_triangle = sample.triangle;
        m_normal = m_shading.normalOf(m_stream.positionsOf(m_triangle));
    }
    const double steps = double{kSubpixels} * m_picture.width();
    return m_shading.colourAt(toDevice(m_pattern.xOf(column, row), steps), toDevice(m_pattern.yOf(row), steps),
                              toDevice(sample.depth, Sample::kFarthest), m_normal);
}

} // namespace zr
