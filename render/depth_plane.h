// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "render/sample_band.h"
#include "render/sample_pattern.h"

namespace zr
{

/// The depth as a function of the place, for one triangle. All of it is in single precision and starts from the corners
/// before they were rounded, as in OpenGL's drivers: of faces that lie almost in each other, the same ones are seen.
class DepthPlane
{
public:
    template <typename Corner>
    DepthPlane(const Corner& a, const Corner& b, const Corner& c)
    {
        const float abX = b.exactX - a.exactX, abY = b.exactY - a.exactY;
        const float bcX = c.exactX - b.exactX, bcY = c.exactY - b.exactY;
        const float scale = 1.0F / (bcX * abY - bcY * abX);
        const float depth = depthOf(b);
        const float depthAb = depth - depthOf(a);
        const float depthBc = depthOf(c) - depth;
        m_perX = depthBc * (abY * scale) - depthAb * (bcY * scale);
        m_perY = depthAb * (bcX * scale) - depthBc * (abX * scale);
        m_atOrigin = depth - (m_perX * (b.exactX - kOrigin) + m_perY * (b.exactY - kOrigin));
    }

    /// At four places, in Sample::kDepthSteps. For triangles with next to no area the depth may be anything.
    Int4 at(Vec4 x, Vec4 y) const
    {
        const Vec4 depth = m_atOrigin + m_perX * (x - kOrigin) + m_perY * (y - kOrigin);
        const Vec4 inside = greaterOf(lesserOf(depth, Vec4{} + 1.0F), Vec4{});
        return roundedToInts(toDouble4(inside) * toDouble4(Sample::kDepthSteps));
    }

    /// At one of them.
    int at(int x, int y) const { return at(Vec4{} + static_cast<float>(x), Vec4{} + static_cast<float>(y))[0]; }

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

} // namespace zr
