// SPDX-License-Identifier: MIT
#include "readers/slice/preview_shading.h"

namespace zr
{
namespace
{

constexpr QRgb kDarkBackground = 0xFF00172D;
constexpr QRgb kLightBackground = 0xFF939393;

// The low 8 bits of each channel.
QRgb wrappedRgb(int red, int green, int blue)
{
    return qRgb(red & 0xFF, green & 0xFF, blue & 0xFF);
}

QRgb darkShade(quint32 luminance)
{
    const int grey = static_cast<int>(static_cast<float>(luminance) / 255.0F * 128.0F + 127.0F);
    return wrappedRgb(grey, grey, grey);
}

QRgb lightShade(quint32 luminance)
{
    const double d = luminance * 0.2;
    return wrappedRgb(static_cast<int>(d), static_cast<int>(d + 107.2), static_cast<int>(d + 163.2));
}

} // namespace

QRgb previewBackground(PreviewShading shading)
{
    return shading == PreviewShading::Dark ? kDarkBackground : kLightBackground;
}

QRgb previewShade(PreviewShading shading, quint32 luminance)
{
    return shading == PreviewShading::Dark ? darkShade(luminance) : lightShade(luminance);
}

} // namespace zr
