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
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            m_columns[i] = loadVec4(camera.constData() + 4 * i);
            m_translations[i] = Vec4{} + m_translation[i];
            for (std::size_t row = 0; row < m_columns.size(); ++row)
                m_rows[row][i] = Vec4{} + m_columns[i][row];
        }
    }

    Vec4 operator()(Vec4 position) const
    {
        const Vec4 placed = position * m_scale + m_translation;
        return m_columns[0] * broadcast<0>(placed) + m_columns[1] * broadcast<1>(placed) +
               m_columns[2] * broadcast<2>(placed) + m_columns[3];
    }

    /// The greatest x, y, z and w of what lies in the box from `min` to `max`.
    Vec4 greatestIn(Vec4 min, Vec4 max) const
    {
        const Vec4 a = min * m_scale + m_translation, b = max * m_scale + m_translation;
        return greaterOf(m_columns[0] * broadcast<0>(a), m_columns[0] * broadcast<0>(b)) +
               greaterOf(m_columns[1] * broadcast<1>(a), m_columns[1] * broadcast<1>(b)) +
               greaterOf(m_columns[2] * broadcast<2>(a), m_columns[2] * broadcast<2>(b)) + m_columns[3];
    }

    /// Four points, lane by lane.
    struct Points {
        Vec4 x, y, z, w;
    };
    Points operator()(Vec4 x, Vec4 y, Vec4 z) const
    {
        const Vec4 placedX = x * m_scale + m_translations[0];
        const Vec4 placedY = y * m_scale + m_translations[1];
        const Vec4 placedZ = z * m_scale + m_translations[2];
        const auto product = [&](const std::array<Vec4, 4>& row) {
            return row[0] * placedX + row[1] * placedY + row[2] * placedZ + row[3];
        };
        return {product(m_rows[0]), product(m_rows[1]), product(m_rows[2]), product(m_rows[3])};
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

    // The same for points lane by lane: each number four times.
    std::array<Vec4, 4> m_translations;
    std::array<std::array<Vec4, 4>, 4> m_rows;
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

/// The same of four triangles, lane by lane.
struct FourClipTriangles {
    using Points = ClipTransform::Points;

    Points a, b, c;
    Vec4 inverseWOfA, inverseWOfB, inverseWOfC;

    /// `positions`: nine floats for each of them.
    FourClipTriangles(const ClipTransform& transform, const float* positions)
    {
        std::array<Vec4, 4> first, second;
        Vec4 last{};
        for (std::size_t i = 0; i < 4; ++i, positions += 9) {
            first[i] = loadVec4(positions);
            second[i] = loadVec4(positions + 4);
            last[i] = positions[8];
        }
        transpose(first);
        transpose(second);
        a = transform(first[0], first[1], first[2]);
        b = transform(first[3], second[0], second[1]);
        c = transform(second[2], second[3], last);
        inverseWOfA = 1.0F / a.w;
        inverseWOfB = 1.0F / b.w;
        inverseWOfC = 1.0F / c.w;
    }

    Vec4Mask areInside() const
    {
        return isWithin(a, inverseWOfA) & isWithin(b, inverseWOfB) & isWithin(c, inverseWOfC);
    }

private:
    static Vec4Mask isWithin(const Points& points, Vec4 inverseW)
    {
        constexpr Vec4 infinity = Vec4{} + std::numeric_limits<float>::infinity();
        const auto& [x, y, z, w] = points;
        return (x <= w) & (-x <= w) & (y <= w) & (-y <= w) & (z <= w) & (-z <= w) & (w >= 0.0F) & (inverseW > 0.0F) &
               (inverseW < infinity);
    }
};

} // namespace zr
