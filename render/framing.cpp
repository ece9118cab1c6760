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

/// What lies between the two.
struct Extent {
    Vec4 min = Vec4{} + std::numeric_limits<float>::max();
    Vec4 max = Vec4{} + std::numeric_limits<float>::lowest();

    void include(Vec4 v)
    {
        min = lesserOf(v, min);
        max = greaterOf(v, max);
    }
};

/// Finds the extent of what is seen of triangles.
class ExtentSearch
{
public:
    ExtentSearch(const QMatrix4x4& camera, const QMatrix4x4& model)
        : m_camera(camera), m_model(model), m_toClipSpace(camera, model), m_beyond(beyond())
    {
    }

    const Extent& extent() const { return m_extent; }

    void include(const TriangleStream::Run& run)
    {
        for (quint32 first = 0; first < run.count; first += kBlock)
            includeBlock(run.positions + std::size_t{first} * kFloatsPerBareTriangle,
                         std::min(run.count - first, kBlock));
    }

private:
    /// Takes positions to how far, times w, they are to the right and to the left of the extent, above and below it.
    /// That needs no division, and four numbers take no longer than two.
    ClipTransform beyond() const
    {
        const Vec4 min = m_extent.min, max = m_extent.max;
        const QMatrix4x4 distances(1.0F, 0.0F, 0.0F, -max[0], //
                                   -1.0F, 0.0F, 0.0F, min[0], //
                                   0.0F, 1.0F, 0.0F, -max[1], //
                                   0.0F, -1.0F, 0.0F, min[1]);
        return {distances * m_camera, m_model};
    }

    /// Triangles that follow each other mostly lie side by side, and nearly no block goes beyond when some of a mesh
    /// have been looked at.
    void includeBlock(const float* positions, quint32 count)
    {
        const Extent box = boxOf(positions, count);
        if (holdsInAll(m_beyond.greatestIn(box.min, box.max) <= 0.0F))
            return;
        for (quint32 i = 0; i < count; ++i, positions += kFloatsPerBareTriangle)
            if (isBeyond(positions))
                include(ClipTriangle(m_toClipSpace, positions));
    }

    static Extent boxOf(const float* positions, quint32 count)
    {
        Extent box;
        for (quint32 i = 0; i < count; ++i, positions += kFloatsPerBareTriangle) {
            box.include(loadVec4(positions));
            box.include(loadVec4(positions + 3));
            box.include(loadLastVec3(reinterpret_cast<const char*>(positions + 6)));
        }
        return box;
    }

    /// Whether any corner is. Also for what is not a number.
    bool isBeyond(const float* positions) const
    {
        const Vec4 a = m_beyond(loadVec4(positions)), b = m_beyond(loadVec4(positions + 3));
        const Vec4 c = m_beyond(loadLastVec3(reinterpret_cast<const char*>(positions + 6)));
        return !holdsInAll((a <= 0.0F) & (b <= 0.0F) & (c <= 0.0F));
    }

    void include(const ClipTriangle& clip)
    {
        if (!clip.isInside())
            return;
        const Vec4 a = clip.a * clip.inverseW[0], b = clip.b * clip.inverseW[1], c = clip.c * clip.inverseW[2];
        const Vec4 ab = b - a, ac = c - a;
        if (!(ab[0] * ac[1] - ac[0] * ab[1] > 0.0F))
            return;
        for (const Vec4 corner : {a, b, c})
            m_extent.include(corner);
        m_beyond = beyond();
    }

    static constexpr quint32 kBlock = 32; ///< triangles

    QMatrix4x4 m_camera;
    QMatrix4x4 m_model;
    ClipTransform m_toClipSpace;
    Extent m_extent;
    ClipTransform m_beyond;
};

} // namespace

QMatrix4x4 framingMatrix(const QMatrix4x4& camera, const QMatrix4x4& model, const TriangleStream& stream)
{
    ExtentSearch search(camera, model);
    for (const TriangleStream::Run& run : stream.runs())
        search.include(run);
    const Extent& extent = search.extent();
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
