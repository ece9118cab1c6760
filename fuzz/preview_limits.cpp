// SPDX-License-Identifier: MIT
#include "fuzz/preview_limits.h"

#include <QHash>
#include <QtEndian>

#include <cstdlib>

namespace zr::fuzz
{
namespace
{

constexpr qint32 kMaxSide = 150;

// The signed number at `offset`; 0 when that is outside the input.
qint64 fieldAt(const QByteArray& input, qint64 offset)
{
    return offset >= 0 && offset + 4 <= input.size() ? qFromLittleEndian<qint32>(input.constData() + offset) : 0;
}

// `headOffset` is where the preview's header is in the file, `defaultHead` where the reader looks when that is
// negative.
void limitPreviewSize(QByteArray& input, qint64 headOffset, qint64 defaultHead)
{
    constexpr qint32 kMaxValidSide = 10000;
    const qint64 head = headOffset < 0 ? defaultHead : headOffset;
    for (const qint64 field : {head, head + 4}) {
        const auto side = static_cast<qint32>(fieldAt(input, field));
        if (side > kMaxSide && side <= kMaxValidSide)
            qToLittleEndian(side % kMaxSide + 1, input.data() + field);
    }
}

void limitVrx(QByteArray& input)
{
    constexpr qint64 kFixedPlaceMagic = 0x12FD0107;
    if (fieldAt(input, 0) == kFixedPlaceMagic) {
        limitPreviewSize(input, 328, 0);
        limitPreviewSize(input, 336, 0);
    } else {
        limitPreviewSize(input, fieldAt(input, 60), 112);
    }
}

void limitKestravo(QByteArray& input)
{
    limitPreviewSize(input, fieldAt(input, 12), 412);
}

void limitFdg(QByteArray& input)
{
    limitPreviewSize(input, fieldAt(input, 44), 216);
}

void limitGf(QByteArray& input)
{
    limitPreviewSize(input, fieldAt(input, 48), 216);
}

// A BMP file of few bytes may claim 16384 x 16384 pixels.
void limitSvgx(QByteArray& input)
{
    constexpr qint64 kMaxPixels = 1 << 16;
    const qint64 place = fieldAt(input, 16);
    const qint64 bmp = place < 0 ? 28 : place;
    const qint64 width = fieldAt(input, bmp + 18);
    const qint64 height = fieldAt(input, bmp + 22);
    if (width <= 0 || height == 0 || width * std::abs(height) <= kMaxPixels)
        return;
    qToLittleEndian(static_cast<qint32>(width % kMaxSide + 1), input.data() + bmp + 18);
    qToLittleEndian(static_cast<qint32>(height % kMaxSide), input.data() + bmp + 22);
}

} // namespace

void limitPreview(const QString& suffix, QByteArray& input)
{
    static const QHash<QString, void (*)(QByteArray&)> limits{
        {"vrx", limitVrx}, {"vrxdlp", limitVrx},        {"fdg", limitFdg},
        {"gf", limitGf},   {"kestravo", limitKestravo}, {"svgx", limitSvgx},
    };
    if (const auto limit = limits.value(suffix))
        limit(input);
}

} // namespace zr::fuzz
