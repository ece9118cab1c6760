#include "host/contact_sheet.h"

#include <QFontMetrics>
#include <QPainter>

#include <cmath>

namespace zr
{
namespace
{

constexpr int kPicturePx = 200;
constexpr int kGapPx = 12;
constexpr int kNamePx = 22;
constexpr int kFontPx = 13;
constexpr int kMaxColumns = 10;

// Transparent pictures are seen on a checkerboard, as in other picture viewers.
void drawCheckerboard(QPainter& painter, const QRect& area)
{
    constexpr int kSquarePx = 10;
    painter.fillRect(area, QColor(255, 255, 255));
    for (int y = 0; y < area.height(); y += kSquarePx) {
        for (int x = (y / kSquarePx % 2) * kSquarePx; x < area.width(); x += 2 * kSquarePx)
            painter.fillRect(area.x() + x, area.y() + y, kSquarePx, kSquarePx, QColor(236, 236, 236));
    }
}

} // namespace

void ContactSheet::add(const QImage& picture, const QString& name)
{
    m_cells.push_back({picture.scaled(kPicturePx, kPicturePx, Qt::KeepAspectRatio, Qt::SmoothTransformation), name});
}

QImage ContactSheet::draw() const
{
    const int count = static_cast<int>(m_cells.size());
    const int columns = qBound(1, static_cast<int>(std::ceil(std::sqrt(count * 1.5))), kMaxColumns);
    const int rows = (count + columns - 1) / columns;
    const QSize step(kPicturePx + kGapPx, kPicturePx + kNamePx + kGapPx);
    QImage sheet(kGapPx + columns * step.width(), kGapPx + rows * step.height(), QImage::Format_RGB32);
    sheet.fill(QColor(250, 250, 250));

    QPainter painter(&sheet);
    QFont font = painter.font();
    font.setPixelSize(kFontPx);
    painter.setFont(font);
    for (int i = 0; i < count; ++i) {
        const Cell& cell = m_cells[static_cast<std::size_t>(i)];
        const QRect area(kGapPx + i % columns * step.width(), kGapPx + i / columns * step.height(), kPicturePx,
                         kPicturePx);
        drawCheckerboard(painter, area);
        painter.drawImage(area.center() - cell.picture.rect().center(), cell.picture);
        const QString name = painter.fontMetrics().elidedText(cell.name, Qt::ElideMiddle, kPicturePx);
        painter.drawText(QRect(area.left(), area.bottom() + 1, kPicturePx, kNamePx), Qt::AlignCenter, name);
    }
    return sheet;
}

} // namespace zr
