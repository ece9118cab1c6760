// SPDX-License-Identifier: MIT
#pragma once

#include "host/cell_labels.h"

#include <QFontMetrics>

class QPainter;
class QRect;

namespace zr
{

/// The label within `widthPx`, with dots in place of what is left out. The part that distinguishes it is left out last.
QString elided(const CellLabel& label, const QFontMetrics& metrics, int widthPx);

/// Draws the text in as many centred lines as fit into `area`, the last one elided.
void drawWrapped(QPainter& painter, const QRect& area, const QString& text);

} // namespace zr
