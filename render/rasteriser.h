// SPDX-License-Identifier: MIT
#pragma once

#include "render/clip_transform.h"
#include "render/sample_band.h"
#include "render/sample_pattern.h"

namespace zr
{

class ClippedPolygon;

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
        int x, y;   ///< from the lower left corner of the picture, in steps of kSubpixels
        Vec4 place; ///< x and y before they were rounded
        float z;    ///< from -1, near, to 1
    };

    Corner toCorner(Vec4 device) const;
    void drawClipped(const ClippedPolygon& polygon, quint32 triangle);
    void drawTriangle(const Corner& a, const Corner& b, const Corner& c, quint32 triangle);

    const ClipTransform m_transform;
    const SamplePattern m_pattern;
    const Vec4 m_scale; ///< takes x and y of clip space, divided by w, to Corner::place, and so does adding it
    SampleBand& m_band;
};

} // namespace zr
