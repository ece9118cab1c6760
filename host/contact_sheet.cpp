// SPDX-License-Identifier: MIT
#include "host/contact_sheet.h"

#include "core/printable.h"
#include "host/application.h"
#include "host/platform.h"
#include "host/sheet_text.h"

#include <QFileInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zr
{
namespace
{

constexpr int kPicturePx = 200;
constexpr int kGapPx = 12;
constexpr int kNamePx = 22;
constexpr int kFontPx = 13;
constexpr int kReasonMarginPx = 12;
constexpr int kMaxColumns = 10;
constexpr int kDotsPerMetre = 3780; // 96 per inch

// A full page is 11,712 pixels high and takes 100 MB in memory. Qt paints up to 32,767 pixels, and viewers that draw
// with the graphics card show up to 16,384.
constexpr int kMaxRows = 50;
constexpr int kMaxCells = kMaxColumns * kMaxRows;

const QSize kStep(kPicturePx + kGapPx, kPicturePx + kNamePx + kGapPx);

int columnsFor(int cells)
{
    return qBound(1, static_cast<int>(std::ceil(std::sqrt(cells * 1.5))), kMaxColumns);
}

QSize pageSize(int columns, int rows)
{
    return {kGapPx + columns * kStep.width(), kGapPx + rows * kStep.height()};
}

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

QStringList sheetFiles(const QString& file, int count)
{
    const int nameStart = file.size() - QFileInfo(file).fileName().size();
    const int dot = file.lastIndexOf(QLatin1Char('.'));
    const int numberAt = dot > nameStart ? dot : file.size();
    QStringList files;
    for (int cells = 0; cells < count; cells += kMaxCells) {
        QString name = file;
        if (!files.isEmpty())
            name.insert(numberAt, QStringLiteral("-%1").arg(files.size() + 1));
        files.append(name);
    }
    return files;
}

QImage ContactSheet::cellPicture(const QImage& picture)
{
    return picture.scaled(kPicturePx, kPicturePx, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

ContactSheet::ContactSheet(const QString& file, const QStringList& paths, SavePage savePage)
    : m_file(file), m_labels(cellLabels(paths)), m_savePage(std::move(savePage))
{
}

void ContactSheet::addPicture(const QImage& picture)
{
    const QRect area = nextCell();
    const QImage scaled = cellPicture(picture);
    QPainter painter(&m_page);
    drawCheckerboard(painter, area);
    painter.drawImage(area.center() - scaled.rect().center(), scaled);
    painter.end();
    addCell({area, m_labels[static_cast<std::size_t>(m_added)], {}});
}

void ContactSheet::addFailure(const QString& reason)
{
    const QRect area = nextCell();
    QPainter painter(&m_page);
    painter.fillRect(area, QColor(232, 228, 226));
    painter.end();
    addCell({area, m_labels[static_cast<std::size_t>(m_added)], printable(reason)});
}

void ContactSheet::finish()
{
    if (m_page.isNull())
        return;
    const int cells = static_cast<int>(m_cells.size());
    const int columns = m_page.width() / kStep.width();
    const int rows = (cells + columns - 1) / columns;
    m_page = m_page.copy(QRect(QPoint(0, 0), pageSize(std::min(cells, columns), rows)));
    endPage();
}

// Where the next cell's picture belongs, on a page that has room for it.
QRect ContactSheet::nextCell()
{
    const int onPage = m_added % kMaxCells;
    const int cells = std::min(static_cast<int>(m_labels.size()) - m_added + onPage, kMaxCells);
    const int columns = columnsFor(cells);
    if (m_page.isNull()) {
        m_page = QImage(pageSize(columns, (cells + columns - 1) / columns), QImage::Format_RGB32);
        m_page.fill(QColor(250, 250, 250));
        // Qt's own value depends on whether there is an application object yet.
        m_page.setDotsPerMeterX(kDotsPerMetre);
        m_page.setDotsPerMeterY(kDotsPerMetre);
    }
    return {kGapPx + onPage % columns * kStep.width(), kGapPx + onPage / columns * kStep.height(), kPicturePx,
            kPicturePx};
}

void ContactSheet::addCell(const Cell& cell)
{
    m_cells.push_back(cell);
    ++m_added;
    if (m_added % kMaxCells == 0 || m_added == static_cast<int>(m_labels.size()))
        endPage();
}

// Text comes last: it needs the application object, which the first request has to make, with a line in the log.
void ContactSheet::endPage()
{
    makeDrawingApplication();
    QPainter painter(&m_page);
    QFont font = painter.font();
    font.setPixelSize(kFontPx);
    painter.setFont(font);
    for (const Cell& cell : m_cells) {
        const QRect nameArea(cell.area.left(), cell.area.bottom() + 1, kPicturePx, kNamePx);
        painter.setPen(QColor(0, 0, 0));
        painter.drawText(nameArea, Qt::AlignCenter, elided(cell.label, painter.fontMetrics(), kPicturePx));
        painter.setPen(QColor(110, 60, 50));
        const QMargins margins(kReasonMarginPx, kReasonMarginPx, kReasonMarginPx, kReasonMarginPx);
        drawWrapped(painter, cell.area.marginsRemoved(margins), cell.reason);
    }
    painter.end();
    const int page = (m_added - 1) / kMaxCells;
    m_savePage(m_page, sheetFiles(m_file, m_added)[page]);
    m_page = QImage();
    m_cells.clear();
}

} // namespace zr
