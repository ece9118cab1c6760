// SPDX-License-Identifier: MIT
// make-icon FILE: draws the product's icon, a cube that is printed layer by layer, and writes it as FILE, an .ico with
// all sizes that Windows shows. The result is committed as zrthumbnail.ico, so that a build for Windows needs no second
// Qt.

#include <QBuffer>
#include <QDataStream>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QtMath>

namespace
{

constexpr int kSizesPx[] = {16, 32, 48, 256};
// Programs expect PNG in this size only.
constexpr int kPngSizePx = 256;

struct Side {
    QColor light;
    QColor dark;
};
const Side kLeft = {QColor(0x2f, 0x7f, 0xc8), QColor(0x1f, 0x5f, 0x9f)};
const Side kRight = {QColor(0x1c, 0x54, 0x8c), QColor(0x12, 0x3c, 0x68)};
const QColor kTop(0x8c, 0xc8, 0xf5);
const QColor kEdge(0xff, 0x9a, 0x2e);

// Fewer layers where they would run together.
int layerCount(int sizePx)
{
    return sizePx < 32 ? 3 : sizePx < 48 ? 5 : 7;
}

// The cube's corners in a square of side 1: x to the right front, y to the left front, z up, each from 0 to 1.
QPointF corner(double x, double y, double z)
{
    const double halfWidth = 0.44;
    const double depth = halfWidth * qTan(M_PI / 6);
    const double height = 0.44;
    return {0.5 + (x - y) * halfWidth, 0.974 - (2 - x - y) * depth - z * height};
}

void drawLayer(QPainter* painter, int layer, int count)
{
    const double bottom = static_cast<double>(layer) / count;
    const double top = static_cast<double>(layer + 1) / count;
    const bool isLight = layer % 2 == 0;
    painter->setBrush(isLight ? kLeft.light : kLeft.dark);
    painter->drawPolygon(QPolygonF({corner(0, 1, bottom), corner(1, 1, bottom), corner(1, 1, top), corner(0, 1, top)}));
    painter->setBrush(isLight ? kRight.light : kRight.dark);
    painter->drawPolygon(QPolygonF({corner(1, 1, bottom), corner(1, 0, bottom), corner(1, 0, top), corner(1, 1, top)}));
}

// The last layer is still being printed: its rim glows.
void drawTop(QPainter* painter)
{
    const auto square = [](double inset) {
        return QPolygonF({corner(inset, inset, 1), corner(1 - inset, inset, 1), corner(1 - inset, 1 - inset, 1),
                          corner(inset, 1 - inset, 1)});
    };
    painter->setBrush(kEdge);
    painter->drawPolygon(square(0));
    painter->setBrush(kTop);
    painter->drawPolygon(square(0.14));
}

// Drawn larger and scaled down, so that the seams between two layers do not show what is behind.
QImage drawIcon(int sizePx)
{
    constexpr int kOversampling = 8;
    QImage image(sizePx * kOversampling, sizePx * kOversampling, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(image.width(), image.height());
    painter.setPen(Qt::NoPen);
    const int layers = layerCount(sizePx);
    for (int layer = 0; layer < layers; ++layer)
        drawLayer(&painter, layer, layers);
    drawTop(&painter);
    painter.end();
    return image.scaled(sizePx, sizePx, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32);
}

// A bitmap without a file's header, bottom row first; its mask is unused, since its pixels have an alpha channel.
QByteArray bitmapOf(const QImage& image)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    const int size = image.width();
    const int maskBytesPerRow = (size + 31) / 32 * 4;
    stream << quint32{40} << qint32{size} << qint32{size * 2} << quint16{1} << quint16{32};
    for (int i = 0; i < 6; ++i)
        stream << quint32{0};
    for (int y = size - 1; y >= 0; --y) {
        for (int x = 0; x < size; ++x)
            stream << quint32{image.pixel(x, y)};
    }
    return bytes + QByteArray(maskBytesPerRow * size, '\0');
}

QByteArray pngOf(const QImage& image)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG", 0);
    return buffer.data();
}

QByteArray iconFile()
{
    QByteArray directory;
    QByteArray pictures;
    QDataStream stream(&directory, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    const auto count = static_cast<quint16>(std::size(kSizesPx));
    const int directoryBytes = 6 + count * 16;
    stream << quint16{0} << quint16{1} << count;
    for (const int size : kSizesPx) {
        const QImage image = drawIcon(size);
        const QByteArray picture = size == kPngSizePx ? pngOf(image) : bitmapOf(image);
        const auto side = static_cast<quint8>(size % 256); // 0 means 256
        stream << side << side << quint16{0} << quint16{1} << quint16{32} << static_cast<quint32>(picture.size())
               << static_cast<quint32>(directoryBytes + pictures.size());
        pictures += picture;
    }
    return directory + pictures;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    QFile file(QFile::decodeName(argv[1]));
    const QByteArray icon = iconFile();
    return file.open(QIODevice::WriteOnly) && file.write(icon) == icon.size() && file.flush() ? 0 : 1;
}
