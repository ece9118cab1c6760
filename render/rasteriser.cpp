// SPDX-License-Identifier: MIT
#include "render/rasteriser.h"

#include "render/depth_plane.h"
#include "render/large_triangle.h"
#include "render/polygon_clip.h"
#include "render/small_triangle.h"
#include "render/tiny_triangles.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace zr
{

Rasteriser::Rasteriser(const ClipTransform& toClipSpace, int side, const SamplePattern& pattern, SampleBand& band)
    : m_transform(toClipSpace), m_pattern(pattern), m_scale(static_cast<float>(side) * 0.5F * kSubpixels), m_band(band)
{
}

void Rasteriser::draw(const float* positions, quint32 first, quint32 count)
{
    constexpr std::size_t kFloats = 9;
    quint32 drawn = 0;
    for (; count - drawn >= 4; drawn += 4)
        drawFour(positions + drawn * kFloats, first + drawn);
    if (drawn == count)
        return;
    // The others have no area.
    std::array<float, 4 * kFloats> last{};
    std::copy(positions + drawn * kFloats, positions + count * kFloats, last.begin());
    drawFour(last.data(), first + drawn);
}

void Rasteriser::drawFour(const float* positions, quint32 first)
{
    const FourClipTriangles clip(m_transform, positions);
    const Vec4Mask areInside = clip.areInside();
    drawInside(toCorners(clip.a, clip.inverseWOfA), toCorners(clip.b, clip.inverseWOfB),
               toCorners(clip.c, clip.inverseWOfC), areInside, first);
    for (unsigned lanes = lanesOf(~areInside); lanes != 0; lanes &= lanes - 1) {
        const auto lane = static_cast<unsigned>(__builtin_ctz(lanes));
        drawClipped(positions + std::size_t{9} * lane, first + lane);
    }
}

inline Rasteriser::Corners Rasteriser::toCorners(const ClipTransform::Points& points, Vec4 inverseW) const
{
    const Vec4 x = fusedMultiplyAdd(points.x * inverseW, m_scale, m_scale);
    const Vec4 y = fusedMultiplyAdd(points.y * inverseW, m_scale, m_scale);
    return {roundedToInts(x), roundedToInts(y), x, y, points.z * inverseW};
}

void Rasteriser::drawClipped(const float* positions, quint32 triangle)
{
    const Vec4 last = loadLastVec3(reinterpret_cast<const char*>(positions + 6));
    const ClippedPolygon polygon =
        clipped(m_transform(loadVec4(positions)), m_transform(loadVec4(positions + 3)), m_transform(last));
    // A corner in the eye itself has no place in the picture.
    for (std::size_t i = 0; i < polygon.size(); ++i)
        if (!(polygon[i][3] > 0.0))
            return;
    const auto corner = [&](std::size_t i) {
        const ClipCorner& place = polygon[i];
        const auto device = [&](std::size_t axis) { return Vec4{} + static_cast<float>(place[axis] / place[3]); };
        return toCorners(ClipTransform::Points{device(0), device(1), device(2), Vec4{}}, Vec4{} + 1.0F);
    };
    for (std::size_t i = 2; i < polygon.size(); ++i)
        drawInside(corner(0), corner(i - 1), corner(i), Vec4Mask{-1, 0, 0, 0}, triangle);
}

inline void Rasteriser::drawInside(const Corners& a, const Corners& b, const Corners& c, Vec4Mask areDrawn,
                                   quint32 first)
{
    const Vec4 ax = toFloats(a.x), bx = toFloats(b.x), cx = toFloats(c.x);
    const Vec4 ay = toFloats(a.y), by = toFloats(b.y), cy = toFloats(c.y);
    // Exact: the numbers are whole and small.
    areDrawn &= toDouble4(bx - ax) * toDouble4(cy - ay) > toDouble4(cx - ax) * toDouble4(by - ay);
    const Int4 lowest = m_pattern.rowsFrom(toInts(lesserOf(lesserOf(ay, by), cy)));
    const Int4 highest = m_pattern.rowsFrom(toInts(greaterOf(greaterOf(ay, by), cy)));
    const Int4 bandBegin = Int4{} + m_band.begin() * m_pattern.samples();
    const Int4 bandEnd = Int4{} + m_band.end() * m_pattern.samples();
    const Int4 beginRow = lowest > bandBegin ? lowest : bandBegin;
    const Int4 endRow = highest < bandEnd ? highest : bandEnd;
    areDrawn &= beginRow < endRow;
    if (lanesOf(areDrawn) == 0)
        return;
    // What is not drawn may not have been a number.
    const Int4 leftX = toInts(lesserOf(lesserOf(ax, bx), cx)) & areDrawn;
    const Int4 rightX = toInts(greaterOf(greaterOf(ax, bx), cx)) & areDrawn;
    const Places places{a, b, c, leftX, rightX, beginRow, endRow, first};
    const Vec4Mask areTiny =
        areDrawn & (rightX - leftX <= TinyTriangles::kMaxWidth) & (endRow - beginRow <= TinyTriangles::kMaxRows);
    if (lanesOf(areTiny) != 0)
        drawTiny(places, areTiny);
    for (unsigned lanes = lanesOf(areDrawn & ~areTiny); lanes != 0; lanes &= lanes - 1) {
        const Place place = places[__builtin_ctz(lanes)];
        if (place.isSmall())
            drawSmall(place);
        else
            drawLarge(place);
    }
}

inline void Rasteriser::drawTiny(const Places& places, Vec4Mask areTiny)
{
    const auto& [a, b, c, leftX, rightX, beginRow, endRow, first] = places;
    const TinyTriangles shapes(a, b, c);
    const Int4 left = areTiny & leftX, right = areTiny & rightX, end = areTiny & endRow;
    for (Int4 row = areTiny & beginRow; lanesOf(row < end) != 0; row += 1) {
        const Int4 column = m_pattern.columnsFrom(left, row);
        const Int4 x = m_pattern.xsOf(column, row), y = m_pattern.ysOf(row);
        const Vec4Mask areHit = (row < end) & (x < right) & shapes.hold(x, y);
        for (unsigned lanes = lanesOf(areHit); lanes != 0; lanes &= lanes - 1) {
            const int lane = __builtin_ctz(lanes);
            const DepthPlane depths(a[lane], b[lane], c[lane]);
            m_band.sample(column[lane], row[lane]).add(depths.at(x[lane], y[lane]), first + static_cast<quint32>(lane));
        }
    }
}

inline bool Rasteriser::Place::isSmall() const
{
    const auto [lowY, highY] = std::minmax({a.y, b.y, c.y});
    return rightX - leftX <= SmallTriangle::kMaxExtent && highY - lowY <= SmallTriangle::kMaxExtent;
}

void Rasteriser::drawSmall(const Place& place)
{
    const auto& [a, b, c, leftX, rightX, beginRow, endRow, triangle] = place;
    const int cellWidthBits = m_pattern.cellWidthBits(), samplesPerCell = m_pattern.samplesPerCell();
    const int beginCell = leftX >> cellWidthBits;
    const int endCell = ((rightX - 1) >> cellWidthBits) + 1;
    const int beginGroupRow = m_pattern.groupRowOf(beginRow);
    const int endGroupRow = m_pattern.groupRowOf(endRow - 1) + 1;
    const int beginY = m_pattern.cellRowOf(beginGroupRow) << kSubpixelBits;
    const SmallTriangle shape(a, b, c, beginCell << cellWidthBits, beginY);
    std::optional<DepthPlane> depths;
    for (int groupRow = beginGroupRow; groupRow < endGroupRow; ++groupRow) {
        const auto& [groupX, groupY] = m_pattern.placesInCell(groupRow);
        const int y = m_pattern.cellRowOf(groupRow) << kSubpixelBits;
        SmallTriangle::Row row(shape, groupX, groupY, y - beginY, 1 << cellWidthBits);
        Sample* samples = m_band.group(beginCell, groupRow);
        for (int cell = beginCell; cell < endCell; ++cell) {
            const Vec4Mask isHit = row.areInside();
            if (lanesOf(isHit) != 0) {
                if (!depths)
                    depths.emplace(a, b, c);
                const Int4 depth =
                    depths->at(groupX + static_cast<float>(cell << cellWidthBits), groupY + static_cast<float>(y));
                addToSamples(samples, depth, triangle, isHit);
            }
            row.goToNextCell();
            samples += samplesPerCell;
        }
    }
}

void Rasteriser::drawLarge(const Place& place)
{
    const auto& [a, b, c, leftX, rightX, beginRow, endRow, triangle] = place;
    const int cellWidthBits = m_pattern.cellWidthBits(), samplesPerCell = m_pattern.samplesPerCell();
    const LargeTriangle shape(a, b, c);
    const DepthPlane depths(a, b, c);
    const int endGroupRow = m_pattern.groupRowOf(endRow - 1) + 1;
    for (int groupRow = m_pattern.groupRowOf(beginRow); groupRow < endGroupRow; ++groupRow) {
        const auto& [groupX, groupY] = m_pattern.placesInCell(groupRow);
        const Int4 rows = m_pattern.rowsOf(groupRow);
        const Vec4 y = groupY + static_cast<float>(m_pattern.cellRowOf(groupRow) << kSubpixelBits);
        const LargeTriangle::Spans spans = shape.spansAt(y, (rows >= beginRow) & (rows < endRow));
        const Vec4 begin = toFloats(spans.begin), end = toFloats(spans.end);
        const int beginCell = spans.leftmost() >> cellWidthBits;
        const int endCell = ((spans.rightmost() - 1) >> cellWidthBits) + 1;
        Sample* samples = m_band.group(beginCell, groupRow);
        for (int cell = beginCell; cell < endCell; ++cell) {
            const Vec4 x = groupX + static_cast<float>(cell << cellWidthBits);
            addToSamples(samples, depths.at(x, y), triangle, (begin <= x) & (x < end));
            samples += samplesPerCell;
        }
    }
}

} // namespace zr
