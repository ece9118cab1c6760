// SPDX-License-Identifier: MIT
#include "render/sample_resolver.h"

#include "render/flat_shading.h"
#include "render/triangle_stream.h"

#include <algorithm>

namespace zr
{
namespace
{

/// The channels of some opaque colours.
struct ColourSum {
    int samples = 0;
    int red = 0;
    int green = 0;
    int blue = 0;

    void add(QRgb colour, int times)
    {
        samples += times;
        red += qRed(colour) * times;
        green += qGreen(colour) * times;
        blue += qBlue(colour) * times;
    }

    /// Of 2 to the power of `bits` samples, the other ones of which show nothing. Premultiplied.
    QRgb average(int bits) const
    {
        const auto rounded = [bits, half = (1 << bits) / 2](int sum) { return (sum + half) >> bits; };
        return qRgba(rounded(red), rounded(green), rounded(blue), rounded(255 * samples));
    }
};

} // namespace

void SampleResolver::resolve(const SampleBand& band)
{
    for (int row = band.begin(); row < band.end(); ++row) {
        m_parts.clear();
        const Sample* samples = band.row(row);
        for (int column = 0; column < band.width(); ++column, samples += m_pattern.samples())
            findParts(samples, column, row);
        shadeParts();
        paintParts(reinterpret_cast<QRgb*>(m_picture.scanLine(m_picture.height() - 1 - row)));
    }
}

inline void SampleResolver::findParts(const Sample* samples, int column, int row)
{
    quint32 previous = 0;
    int* count = nullptr; // of the previous one
    for (int i = 0; i < m_pattern.samples(); ++i) {
        const auto& [triangle, depth] = samples[i];
        if (samples[i].isNothing())
            continue;
        if (count && triangle == previous) {
            ++*count;
            continue;
        }
        const float* const positions = m_stream.positionsOf(triangle);
        // A fine mesh's triangles are all over the memory; until the row is painted they are here.
        __builtin_prefetch(positions);
        __builtin_prefetch(positions + kFloatsPerBareTriangle - 1);
        const int sampleRow = row * m_pattern.samples() + i;
        m_parts.push_back({positions, column, m_pattern.xOf(column, sampleRow), m_pattern.yOf(sampleRow),
                           static_cast<int>(depth - Sample::kNearest), 1, 0});
        previous = triangle;
        count = &m_parts.back().samples;
    }
}

void SampleResolver::shadeParts()
{
    // From steps to the range of OpenGL's devices, -1 to 1.
    const float scale = 2.0F / static_cast<float>(kSubpixels * m_picture.width());
    constexpr float depthScale = 2.0F / Sample::kDepthSteps;
    for (std::size_t begin = 0; begin < m_parts.size(); begin += 4) {
        FlatShading::Places places{};
        for (std::size_t i = 0; i < 4; ++i) {
            // The last one may have to stand for others.
            const Part& part = m_parts[std::min(begin + i, m_parts.size() - 1)];
            places.positions[i] = part.positions;
            places.x[i] = static_cast<float>(part.x);
            places.y[i] = static_cast<float>(part.y);
            places.z[i] = static_cast<float>(part.depth);
        }
        places.x = places.x * scale - 1.0F;
        places.y = places.y * scale - 1.0F;
        places.z = places.z * depthScale - 1.0F;
        const std::array<QRgb, 4> colours = m_shading.coloursAt(places);
        for (std::size_t i = 0; i < 4 && begin + i < m_parts.size(); ++i)
            m_parts[begin + i].colour = colours[i];
    }
}

void SampleResolver::paintParts(QRgb* pixels) const
{
    for (auto part = m_parts.cbegin(); part != m_parts.cend();) {
        ColourSum sum;
        const int column = part->column;
        for (; part != m_parts.cend() && part->column == column; ++part)
            sum.add(part->colour, part->samples);
        pixels[column] = sum.average(m_pattern.sampleBits());
    }
}

} // namespace zr
