// SPDX-License-Identifier: MIT
#include "tests/readers/slice/preview_oracle.h"

#include <QColor>

#include <algorithm>
#include <cmath>

namespace zr::test
{
namespace
{

quint32 wordAt(const QByteArray& data, int index)
{
    if (2 * index + 1 >= data.size())
        return 0;
    return static_cast<uchar>(data.at(2 * index)) + 256U * static_cast<uchar>(data.at(2 * index + 1));
}

QImage filledCanvas(int width, int height, QRgb colour)
{
    QImage canvas(width, height, QImage::Format_RGB888);
    canvas.fill(QColor(colour));
    return canvas;
}

} // namespace

QRgb oracleBackground(Scheme scheme)
{
    return scheme == Scheme::Dark ? qRgb(0, 23, 45) : qRgb(147, 147, 147);
}

QRgb oracleShade(Scheme scheme, quint32 luminance)
{
    if (scheme == Scheme::Dark) {
        auto grey = static_cast<float>(luminance);
        grey = grey / 255.0F;
        grey = grey * 128.0F;
        grey = grey + 127.0F;
        const int value = static_cast<int>(std::trunc(grey)) % 256;
        return qRgb(value, value, value);
    }
    const double d = static_cast<double>(luminance) * 0.2;
    return qRgb(static_cast<int>(std::trunc(d + 0.0)) % 256, static_cast<int>(std::trunc(d + 107.2)) % 256,
                static_cast<int>(std::trunc(d + 163.2)) % 256);
}

QImage oracleRunLength(int width, int height, const QByteArray& data, Scheme scheme, int minimumSide)
{
    const int side = std::max(std::max(width, height), minimumSide);
    QImage canvas = filledCanvas(side, side, oracleBackground(scheme));
    const int xOffset = (side - width) / 2;
    const int yOffset = (side - height) / 2;
    const int words = data.size() / 2;
    quint32 k = 0;
    QRgb key = 0;
    for (int i = 0; i < words;) {
        const quint32 v = wordAt(data, i);
        const quint32 red = ((v >> 8) & 0xF8) | 0x05;
        const quint32 green = (((v >> 5) & 0x3F) << 2) | 0x01;
        const quint32 blue = ((v & 0x1F) << 3) | 0x05;
        const QRgb colour = qRgb(static_cast<int>(red), static_cast<int>(green), static_cast<int>(blue));
        if (i == 0)
            key = colour;
        const quint32 luminance = (11 * red + 16 * green + 5 * blue) / 32;
        const QRgb pixel = colour == key ? oracleBackground(scheme) : oracleShade(scheme, luminance);
        quint32 count = 1;
        if (v & 0x0020)
            count = (wordAt(data, i + 1) & 0x0FFF) + 1;
        i += v & 0x0020 ? 2 : 1;
        for (; count > 0; --count, ++k) {
            const quint32 x = k % static_cast<quint32>(width) + static_cast<quint32>(xOffset);
            const quint32 y = k / static_cast<quint32>(width) + static_cast<quint32>(yOffset);
            if (x < static_cast<quint32>(side) && y < static_cast<quint32>(side))
                canvas.setPixel(static_cast<int>(x), static_cast<int>(y), pixel);
        }
    }
    return canvas;
}

QImage oracleChannelWords(int width, int height, const QByteArray& data)
{
    QImage picture = filledCanvas(width, height, oracleBackground(Scheme::Dark));
    const auto startingKey = static_cast<quint32>(height);
    quint32 key[3] = {startingKey, startingKey, startingKey};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int pixel = y * width + x;
            if (6 * (pixel + 1) > data.size())
                return picture;
            const quint32 c[3] = {wordAt(data, 3 * pixel), wordAt(data, 3 * pixel + 1), wordAt(data, 3 * pixel + 2)};
            if (x == 1 && y == 1)
                std::copy(std::begin(c), std::end(c), std::begin(key));
            if (std::equal(std::begin(c), std::end(c), std::begin(key)))
                continue;
            picture.setPixel(x, y, oracleShade(Scheme::Dark, (11 * c[0] + 16 * c[1] + 5 * c[2]) >> 5));
        }
    }
    return picture;
}

QImage scaledTo400(const QImage& picture)
{
    return picture.scaled(400, 400, Qt::KeepAspectRatio, Qt::FastTransformation);
}

QImage centredOnSquare(const QImage& picture, QRgb background)
{
    const int side = std::max({picture.width(), picture.height(), 400});
    QImage square = filledCanvas(side, side, background);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            square.setPixel(x + (side - picture.width()) / 2, y + (side - picture.height()) / 2, picture.pixel(x, y));
        }
    }
    return square;
}

} // namespace zr::test
