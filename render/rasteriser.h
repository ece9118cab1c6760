// SPDX-License-Identifier: MIT
#pragma once

#include "render/clip_transform.h"
#include "render/sample_band.h"
#include "render/sample_pattern.h"

namespace zr
{

/// Finds what is seen in each sample of a picture, by OpenGL's rules: corners are rounded to a 256th of a pixel, a
/// sample on an edge belongs to the triangle on its right or above it, what is not counter-clockwise is a back and is
/// not seen, and the nearest triangle wins, of equals the first one.
class Rasteriser
{
public:
    static constexpr int kMaxSide = 4096;

    /// `side`: width and height of the picture in pixels, at most kMaxSide. Draws into the rows of `band`.
    Rasteriser(const ClipTransform& toClipSpace, int side, const SamplePattern& pattern, SampleBand& band);

    /// Draws triangles, nine floats each. Their numbers in the stream begin with `first`.
    void draw(const float* positions, quint32 first, quint32 count);

private:
    /// Of a triangle in the picture.
    struct Corner {
        int x, y;             ///< from the lower left corner of the picture, in steps of kSubpixels
        float exactX, exactY; ///< before they were rounded
        float z;              ///< from -1, near, to 1
    };

    /// A triangle whose corners are counter-clockwise, within x and rows of samples.
    struct Place {
        Corner a, b, c;
        int leftX, rightX;
        int beginRow, endRow;
        quint32 triangle;

        bool isSmall() const;
    };

    /// The same of four triangles, lane by lane.
    struct Corners {
        Int4 x, y;
        Vec4 exactX, exactY, z;

        Corner operator[](int lane) const { return {x[lane], y[lane], exactX[lane], exactY[lane], z[lane]}; }
    };
    struct Places {
        Corners a, b, c;
        Int4 leftX, rightX;
        Int4 beginRow, endRow;
        quint32 first; ///< the number of the first one

        Place operator[](int lane) const
        {
            return {a[lane],      b[lane],        c[lane],      leftX[lane],
                    rightX[lane], beginRow[lane], endRow[lane], first + static_cast<quint32>(lane)};
        }
    };
    void drawFour(const float* positions, quint32 first);
    void drawClipped(const float* positions, quint32 triangle);
    Corners toCorners(const ClipTransform::Points& points, Vec4 inverseW) const;
    void drawInside(const Corners& a, const Corners& b, const Corners& c, Vec4Mask areDrawn, quint32 first);
    void drawTiny(const Places& places, Vec4Mask areTiny);
    void drawSmall(const Place& place);
    void drawLarge(const Place& place);

    const ClipTransform m_transform;
    const SamplePattern m_pattern;
    const float m_scale; ///< takes x and y of clip space, divided by w, to steps, and so does adding it
    SampleBand& m_band;
};

} // namespace zr
