// SPDX-License-Identifier: MIT
#include "render/flat_shading.h"

#include "core/triangle_normal.h"
#include "render/camera.h"

namespace zr
{
namespace
{

constexpr std::array<float, 3> kColour = {40.0F / 255.0F, 164.0F / 255.0F, 230.0F / 255.0F};
constexpr float kAmbient = 0.3F;
constexpr float kDiffuse = 0.7F;
constexpr float kSpecular = 0.2F;
constexpr float kWhite = 255.0F;

/// To the tenth power, as a product: the same on every machine.
Vec4 toTheTenth(Vec4 number)
{
    const Vec4 square = number * number;
    const Vec4 fourth = square * square;
    return fourth * fourth * square;
}

/// 0 for what is negative.
Vec4 notNegative(Vec4 number)
{
    return number < 0.0F ? Vec4{} : number;
}

/// From 0 to 255. NaN is 0, as with OpenGL's drivers.
Int4 toChannels(Vec4 values)
{
    const Vec4 positive = greaterOf(values, Vec4{});
    return roundedToInts(lesserOf(positive, Vec4{} + 1.0F) * kWhite);
}

} // namespace

FlatShading::FlatShading(const QMatrix4x4& toClipSpace, const QMatrix3x3& normalMatrix)
{
    const QMatrix4x4 fromClip = toClipSpace.inverted();
    double* number = m_toLight.data();
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            // A place's w is positive for all that is seen.
            *number++ = double{kLightPosition[row]} * double{fromClip(3, column)} - double{fromClip(row, column)};
    const float* column = normalMatrix.constData();
    for (Vec4& vector : m_normalColumns) {
        vector = Vec4{column[0], column[1], column[2], 0.0F};
        column += 3;
    }
}

Double4 FlatShading::cosinesAt(const Places& places) const
{
    const Double4 x = toDouble4(places.x), y = toDouble4(places.y), z = toDouble4(places.z);
    const auto toLight = [&](std::size_t row) {
        const double* const numbers = &m_toLight[4 * row];
        return toDouble4(numbers[0]) * x + toDouble4(numbers[1]) * y + toDouble4(numbers[2]) * z +
               toDouble4(numbers[3]);
    };
    const Double4 lightX = toLight(0), lightY = toLight(1), lightZ = toLight(2);
    const Double4 distance = squareRoots(lightX * lightX + lightY * lightY + lightZ * lightZ);

    std::array<Vec4, 4> normals;
    for (std::size_t i = 0; i < normals.size(); ++i) {
        const float* const positions = places.positions[i];
        const Vec4 normal = triangleNormal(loadVec4(positions), loadVec4(positions + 3),
                                           loadLastVec3(reinterpret_cast<const char*>(positions + 6)));
        normals[i] = m_normalColumns[0] * normal[0] + m_normalColumns[1] * normal[1] + m_normalColumns[2] * normal[2];
    }
    transpose(normals);
    return (lightX * toDouble4(normals[0]) + lightY * toDouble4(normals[1]) + lightZ * toDouble4(normals[2])) /
           distance;
}

std::array<QRgb, 4> FlatShading::coloursAt(const Places& places) const
{
    const Vec4 cosine = toVec4(cosinesAt(places));
    // The light's reflection at the normal, seen along the light itself.
    const Vec4 reflection = toTheTenth(notNegative(2.0F * cosine * cosine - 1.0F));
    const Vec4 highlight = kSpecular * (cosine < 0.0F ? Vec4{} : reflection);
    const Vec4 light = kAmbient + kDiffuse * notNegative(cosine);
    const Int4 red = toChannels(kColour[0] * light + highlight);
    const Int4 green = toChannels(kColour[1] * light + highlight);
    const Int4 blue = toChannels(kColour[2] * light + highlight);
    std::array<QRgb, 4> colours;
    for (int i = 0; i < 4; ++i)
        colours[static_cast<std::size_t>(i)] = qRgb(red[i], green[i], blue[i]);
    return colours;
}

} // namespace zr
