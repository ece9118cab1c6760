// SPDX-License-Identifier: MIT
#include "render/framing.h"

#include "render/clip_transform.h"
#include "render/triangle_stream.h"

#include <algorithm>
#include <limits>

namespace zr
{
namespace
{

constexpr float kMargin = 0.04F; ///< of the side

/// What lies between the two; only x and y count.
struct Extent {
    Vec4 min = Vec4{} + std::numeric_limits<float>::max();
    Vec4 max = Vec4{} + std::numeric_limits<float>::lowest();

    void include(Vec4 v)
    {
        min = v < min ? v : min;
        max = v > max ? v : max;
    }
};

Extent seenExtent(const ClipTransform& transform, const TriangleStream& stream)
{
    Extent extent;
    for (const TriangleStream::Run& run : stream.runs()) {
        const float* positions = run.positions;
        for (quint32 i = 0; i < run.count; ++i, positions += kFloatsPerBareTriangle) {
            const ClipTriangle clip(transform, positions);
            if (!clip.isInside())
                continue;
            const Vec4 a = clip.a * clip.inverseW[0], b = clip.b * clip.inverseW[1], c = clip.c * clip.inverseW[2];
            const Vec4 ab = b - a, ac = c - a;
            if (ab[0] * ac[1] - ac[0] * ab[1] > 0.0F)
                for (const Vec4 corner : {a, b, c})
                    extent.include(corner);
        }
    }
    return extent;
}

} // namespace

QMatrix4x4 framingMatrix(const ClipTransform& toClipSpace, const TriangleStream& stream)
{
    const Extent extent = seenExtent(toClipSpace, stream);
    const Vec4 size = extent.max - extent.min;
    const float side = std::max(size[0], size[1]);
    QMatrix4x4 matrix;
    if (!(side > 0.0F))
        return matrix;
    const Vec4 centre = (extent.min + extent.max) * 0.5F;
    // Clip space is 2 wide.
    const float scale = 2.0F * (1.0F - 2.0F * kMargin) / side;
    matrix.scale(scale, scale, 1.0F);
    // Times w: what is divided by it afterwards is moved by the centre itself.
    matrix(0, 3) = -centre[0] * scale;
    matrix(1, 3) = -centre[1] * scale;
    return matrix;
}

} // namespace zr
