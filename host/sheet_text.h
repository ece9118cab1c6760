#pragma once

#include "host/cell_labels.h"

#include <QFontMetrics>

class QPainter;
class QRect;

namespace zr
{

/// Makes the application object without which Qt draws no text, if the program has none: that of a server in a DLL is
/// not the program's.
void prepareDrawing();

/// The label within `widthPx`, with dots in place of what is left out. What tells it from others stays as long as it
/// can.
QString elided(const CellLabel& label, const QFontMetrics& metrics, int widthPx);

/// Draws the text in as many centred lines as fit into `area`, the last one elided.
void drawWrapped(QPainter& painter, const QRect& area, const QString& text);

} // namespace zr
