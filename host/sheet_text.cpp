// SPDX-License-Identifier: MIT
#include "host/sheet_text.h"

#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

namespace zr
{
namespace
{

constexpr int kRoundingPx = 4; // of the widths of three pieces

// A text is not cut inside a surrogate pair.
int startOfCharacter(const QString& text, int position)
{
    const bool isWithin = position > 0 && position < text.size() && text[position].isLowSurrogate() &&
                          text[position - 1].isHighSurrogate();
    return isWithin ? position - 1 : position;
}

// Some fonts ask for the height of three lines, because of letters that no reason contains.
int lineHeight(const QFont& font)
{
    return font.pixelSize() * 5 / 4;
}

QStringList wrapped(const QString& text, const QFont& font, const QSize& size)
{
    const QFontMetrics metrics(font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(text, font);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    const int mostLines = size.height() / lineHeight(font);
    for (QTextLine line = layout.createLine(); line.isValid() && lines.size() < mostLines; line = layout.createLine()) {
        line.setLineWidth(size.width());
        const bool isLast = lines.size() + 1 == mostLines;
        const QString rest = text.mid(line.textStart(), isLast ? -1 : line.textLength());
        lines.append(metrics.elidedText(rest.trimmed(), Qt::ElideRight, size.width()));
    }
    layout.endLayout();
    return lines;
}

} // namespace

QString elided(const CellLabel& label, const QFontMetrics& metrics, int widthPx)
{
    if (label.keptAt < 0 || metrics.horizontalAdvance(label.text) <= widthPx)
        return metrics.elidedText(label.text, Qt::ElideMiddle, widthPx);
    widthPx -= kRoundingPx;
    const int keptAt = startOfCharacter(label.text, label.keptAt);
    const int keptEnd = label.keptAt + label.keptLength;
    const QString before = label.text.left(keptAt);
    const QString kept = metrics.elidedText(label.text.mid(keptAt, keptEnd - keptAt), Qt::ElideMiddle, widthPx / 2);
    const int dotsPx = before.isEmpty() ? 0 : metrics.horizontalAdvance(QChar(0x2026));
    const QString after = metrics.elidedText(label.text.mid(keptEnd), Qt::ElideMiddle,
                                             widthPx - metrics.horizontalAdvance(kept) - dotsPx);
    return metrics.elidedText(before, Qt::ElideLeft, widthPx - metrics.horizontalAdvance(kept + after)) + kept + after;
}

void drawWrapped(QPainter& painter, const QRect& area, const QString& text)
{
    const QStringList lines = wrapped(text, painter.font(), area.size());
    const int height = lineHeight(painter.font());
    QRect line(area.left(), area.center().y() - lines.size() * height / 2, area.width(), height);
    for (const QString& words : lines) {
        painter.drawText(line, Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip, words);
        line.translate(0, height);
    }
}

} // namespace zr
