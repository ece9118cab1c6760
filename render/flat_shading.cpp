// SPDX-License-Identifier: MIT
#include "render/flat_shading.h"

#include "core/triangle_normal.h"
#include "render/camera.h"

#include <algorithm>
#include <cmath>

namespace zr
{
namespace
{

constexpr std::array<double, 3> kColour = {40.0 / 255.0, 164.0 / 255.0, 230.0 / 255.0};
constexpr double kAmbient = 0.3;
constexpr double kDiffuse = 0.7;
constexpr double kSpecular = 0.2;

/// To the tenth power, as a product: the same on every machine.
double toTheTenth(double number)
{
    const double square = number * number;
    const double fourth = square * square;
    return fourth * fourth * square;
}

/// NaN is 0, as with OpenGL's drivers.
int toChannel(double value)
{
    constexpr double white = 255.0;
    if (!(value > 0.0))
        return 0;
    return roundedToInt(std::min(value, 1.0) * white);
}

} // namespace

FlatShading::FlatShading(const QMatrix4x4& toClipSpace, const QMatrix3x3& normalMatrix)
{
    const QMatrix4x4 inverse = toClipSpace.inverted();
    std::copy_n(inverse.constData(), m_fromClip.size(), m_fromClip.begin());
    const float* column = normalMatrix.constData();
    for (Vec4& vector : m_normalColumns) {
        vector = Vec4{column[0], column[1], column[2], 0.0F};
        column += 3;
    }
}

Vec4 FlatShading::normalOf(const float* positions) const
{
    const Vec4 a = loadVec4(positions);
    const Vec4 b = loadVec4(positions + 3);
    const Vec4 c = loadLastVec3(reinterpret_cast<const char*>(positions + 6));
    const Vec4 normal = triangleNormal(a, b, c);
    return m_normalColumns[0] * normal[0] + m_normalColumns[1] * normal[1] + m_normalColumns[2] * normal[2];
}

QRgb FlatShading::colourAt(double x, double y, double z, Vec4 normal) const
{
    std::array<double, 4> place{};
    for (std::size_t i = 0; i < place.size(); ++i)
        place[i] = m_fromClip[i] * x + m_fromClip[4 + i] * y + m_fromClip[8 + i] * z + m_fromClip[12 + i];
    // Towards the light, times the place's w, which is positive for all that is seen.
    const double lightX = double{kLightPosition.x()} * place[3] - place[0];
    const double lightY = double{kLightPosition.y()} * place[3] - place[1];
    const double lightZ = double{kLightPosition.z()} * place[3] - place[2];
    const double distance = std::sqrt(lightX * lightX + lightY * lightY + lightZ * lightZ);
    const double cosine =
        (lightX * double{normal[0]} + lightY * double{normal[1]} + lightZ * double{normal[2]}) / distance;

    // The light's reflection at the normal, seen along the light itself.
    const double highlight = cosine < 0.0 ? 0.0 : kSpecular * toTheTenth(std::max(2.0 * cosine * cosine - 1.0, 0.0));
    const double light = kAmbient + kDiffuse * std::max(cosine, 0.0);
    return qRgb(toChannel(kColour[0] * light + highlight), toChannel(kColour[1] * light + highlight),
                toChannel(kColour[2] * light + highlight));
}

} // namespace zr
