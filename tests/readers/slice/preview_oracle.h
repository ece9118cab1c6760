// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

namespace zr::test
{

/// The two colour schemes, written down a second time, from their formulas.
enum class Scheme { Dark, Light };

QRgb oracleBackground(Scheme scheme);
QRgb oracleShade(Scheme scheme, quint32 luminance);

/// Decodes run-length coded data pixel by pixel, slowly.
QImage oracleRunLength(int width, int height, const QByteArray& data, Scheme scheme, int minimumSide);

/// Decodes three 16-bit channels per pixel in the Dark scheme, slowly; pixels without data are background.
QImage oracleChannelWords(int width, int height, const QByteArray& data);

/// The picture scaled to fit 400 x 400.
QImage scaledTo400(const QImage& picture);

/// The picture in the middle of a square of at least 400 x 400 in that colour, copied pixel by pixel.
QImage centredOnSquare(const QImage& picture, QRgb background);

} // namespace zr::test
