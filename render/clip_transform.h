// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"

#include <QMatrix4x4>

#include <array>
#include <limits>

namespace zr
{

/// Takes positions to OpenGL's clip space: in single precision and in the order of the operations in the vertex shader,
/// so that faces which lie almost in each other hide each other as they do with OpenGL.
class ClipTransform
{
public:
    /// `model` scales all three axes alike and moves, no more; `camera` comes after it.
    ClipTransform(const QMatrix4x4& camera, const QMatrix4x4& model)
        : m_scale(Vec4{} + model(0, 0)), m_translation(loadVec4(model.constData() + 12))
    {
        for (std::size_t i = 0; i < m_columns.size(); ++i)
            m_columns[i] = loadVec4(camera.constData() + 4 * i);
    }

    Vec4 operator()(Vec4 position) const
    {
        const Vec4 placed = position * m_scale + m_translation;
        return m_columns[0] * broadcast<0>(placed) + m_columns[1] * broadcast<1>(placed) +
               m_columns[2] * broadcast<2>(placed) + m_columns[3];
    }

private:
    template <int Lane>
    static Vec4 broadcast(Vec4 v)
    {
        return __builtin_shufflevector(v, v, Lane, Lane, Lane, Lane);
    }

    Vec4 m_scale;
    Vec4 m_translation;
    std::array<Vec4, 4> m_columns;
};

/// The corners of one triangle in clip space.
struct ClipTriangle {
    Vec4 a, b, c;
    Vec4 inverseW; ///< of a, b and c

    /// `positions`: nine floats.
    ClipTriangle(const ClipTransform& transform, const float* positions)
        : a(transform(loadVec4(positions))), b(transform(loadVec4(positions + 3))),
          c(transform(loadLastVec3(reinterpret_cast<const char*>(positions + 6)))),
          inverseW(1.0F / Vec4{a[3], b[3], c[3], 1.0F})
    {
    }

    /// Whether all of it is within the six planes and can be divided by its w; never with a NaN or infinity.
    bool isInside() const
    {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        return holdsInAll(isWithin(a) & isWithin(b) & isWithin(c) & (inverseW > 0.0F) & (inverseW < infinity));
    }

private:
    // In the lane of w itself that is w >= 0.
    static Vec4Mask isWithin(Vec4 v)
    {
        const Vec4 w = __builtin_shufflevector(v, v, 3, 3, 3, 3);
        return (v <= w) & (-v <= w);
    }
};

} // namespace zr
