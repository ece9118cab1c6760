// SPDX-License-Identifier: MIT
#include "render/rasteriser.h"

#include "render/polygon_clip.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace zr
{
namespace
{

constexpr double kFarthest = Sample::kFarthest;

/// The smallest whole number that is not less. For numbers within the range of int.
int roundedUp(double number)
{
    const int towardsZero = static_cast<int>(number);
    return towardsZero + (towardsZero < number ? 1 : 0);
}

/// An edge from its lower to its upper end.
class Edge
{
public:
    Edge() = default;

    template <typename Corner>
    Edge(const Corner& low, const Corner& high)
        : m_x(low.x), m_y(low.y), m_dx(high.x - low.x), m_dy(static_cast<double>(high.y - low.y))
    {
    }

    /// The first step at the height `y`, which is between the ends, that is not left of the edge.
    ///
    /// The product has at most 42 bits and is exact. A quotient that is not whole is at least 1 / m_dy away from the
    /// next whole number, which no rounding error bridges.
    int xAt(int y) const { return m_x + roundedUp(static_cast<double>(qint64{y - m_y} * m_dx) / m_dy); }

private:
    int m_x = 0;
    int m_y = 0;
    int m_dx = 0;
    double m_dy = 1;
};

/// The sides of a triangle, by its height: the long one from its lowest to its highest corner, and the two that meet in
/// the corner between.
class Sides
{
public:
    /// Counter-clockwise.
    template <typename Corner>
    Sides(const Corner& a, const Corner& b, const Corner& c)
    {
        std::array<const Corner*, 3> sorted = {&a, &b, &c};
        const auto sortPair = [&](std::size_t first, std::size_t second) {
            if (sorted[first]->y <= sorted[second]->y)
                return;
            std::swap(sorted[first], sorted[second]);
            m_isLongLeft = !m_isLongLeft;
        };
        sortPair(0, 1);
        sortPair(1, 2);
        sortPair(0, 1);
        m_middleY = sorted[1]->y;
        m_long = Edge(*sorted[0], *sorted[2]);
        m_lower = Edge(*sorted[0], *sorted[1]);
        m_upper = Edge(*sorted[1], *sorted[2]);
    }

    /// The first step that is not left of the left side, and of the right one.
    std::pair<int, int> at(int y) const
    {
        const int onLong = m_long.xAt(y);
        const int onShort = (y < m_middleY ? m_lower : m_upper).xAt(y);
        return m_isLongLeft ? std::pair(onLong, onShort) : std::pair(onShort, onLong);
    }

private:
    bool m_isLongLeft = true; ///< as long as the corners are counter-clockwise in the order of their heights
    int m_middleY = 0;
    Edge m_long, m_lower, m_upper;
};

/// The depth as a function of the place, for one triangle. All of it is in single precision and starts from the corners
/// before they were rounded, as in OpenGL's drivers: of faces that lie almost in each other, the same ones are seen.
class DepthPlane
{
public:
    template <typename Corner>
    DepthPlane(const Corner& a, const Corner& b, const Corner& c)
    {
        const Vec4 ab = b.place - a.place;
        const Vec4 bc = c.place - b.place;
        const float scale = 1.0F / (bc[0] * ab[1] - bc[1] * ab[0]);
        const float depth = depthOf(b);
        const float depthAb = depth - depthOf(a);
        const float depthBc = depthOf(c) - depth;
        m_perX = depthBc * (ab[1] * scale) - depthAb * (bc[1] * scale);
        m_perY = depthAb * (bc[0] * scale) - depthBc * (ab[0] * scale);
        m_atOrigin = depth - (m_perX * (b.place[0] - kOrigin) + m_perY * (b.place[1] - kOrigin));
    }

    float at(int x, int y) const
    {
        return m_atOrigin + m_perX * (static_cast<float>(x) - kOrigin) + m_perY * (static_cast<float>(y) - kOrigin);
    }

private:
    /// From 0 to 1.
    template <typename Corner>
    static float depthOf(const Corner& corner)
    {
        return static_cast<float>(double{corner.z} * 0.5 + 0.5);
    }

    static constexpr float kOrigin = kSubpixels * 0.5F; ///< the centre of the first pixel

    float m_perX;
    float m_perY;
    float m_atOrigin;
};

/// As Sample::depth. For triangles with next to no area the depth may be anything, NaN too.
quint32 inSteps(float depth)
{
    const double inside = depth < 1.0F ? double{std::max(depth, 0.0F)} : 1.0;
    return static_cast<quint32>(roundedToInt(inside * kFarthest));
}
} // namespace

Rasteriser::Rasteriser(const ClipTransform& toClipSpace, int side, const SamplePattern& pattern, SampleBand& band)
    : m_transform(toClipSpace), m_pattern(pattern), m_scale{static_cast<float>(side) * 0.5F * kSubpixels,
                                                            static_cast<float>(side) * 0.5F * kSubpixels, 0.5F, 0.0F},
      m_band(band)
{
}

void Rasteriser::draw(const float* positions, quint32 first, quint32 count)
{
    for (quint32 i = 0; i < count; ++i, positions += 9) {
        const ClipTriangle clip(m_transform, positions);
        if (clip.isInside())
            drawTriangle(toCorner(clip.a * clip.inverseW[0]), toCorner(clip.b * clip.inverseW[1]),
                         toCorner(clip.c * clip.inverseW[2]), first + i);
        else
            drawClipped(clipped(clip.a, clip.b, clip.c), first + i);
    }
}

inline Rasteriser::Corner Rasteriser::toCorner(Vec4 device) const
{
    const Vec4 place = fusedMultiplyAddXy(device, m_scale, m_scale);
    const std::array<int, 4> rounded = roundedToInts(place);
    return {rounded[0], rounded[1], place, device[2]};
}

void Rasteriser::drawClipped(const ClippedPolygon& polygon, quint32 triangle)
{
    std::array<Corner, ClippedPolygon::kMaxCorners> corners;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const auto& [x, y, z, w] = polygon[i];
        // A corner in the eye itself has no place in the picture.
        if (!(w > 0.0))
            return;
        corners[i] =
            toCorner(Vec4{static_cast<float>(x / w), static_cast<float>(y / w), static_cast<float>(z / w), 1.0F});
    }
    for (std::size_t i = 2; i < polygon.size(); ++i)
        drawTriangle(corners[0], corners[i - 1], corners[i], triangle);
}

void Rasteriser::drawTriangle(const Corner& a, const Corner& b, const Corner& c, quint32 triangle)
{
    const qint64 area = qint64{b.x - a.x} * (c.y - a.y) - qint64{c.x - a.x} * (b.y - a.y);
    if (area <= 0)
        return;
    const auto [leftX, rightX] = std::minmax({a.x, b.x, c.x});
    const auto [lowY, highY] = std::minmax({a.y, b.y, c.y});
    const int endRow = std::min(m_pattern.rowFrom(highY), m_band.end());
    int row = std::max(m_pattern.rowFrom(lowY), m_band.begin());
    if (row >= endRow)
        return;

    const Sides sides(a, b, c);
    std::optional<DepthPlane> depths;
    for (; row < endRow; ++row) {
        const int y = m_pattern.yOf(row);
        if (m_pattern.columnFrom(leftX, row) >= m_pattern.columnFrom(rightX, row))
            continue; // between two samples
        const auto [left, right] = sides.at(y);
        const int begin = m_pattern.columnFrom(left, row);
        const int end = m_pattern.columnFrom(right, row);
        if (begin >= end)
            continue;
        if (!depths)
            depths.emplace(a, b, c);
        Sample* const samples = m_band.row(row);
        for (int column = begin; column < end; ++column) {
            const quint32 depth = inSteps(depths->at(m_pattern.xOf(column, row), y));
            if (depth < samples[column].depth)
                samples[column] = {depth, triangle};
        }
    }
}

} // namespace zr
