#pragma once

#include <QString>

namespace zr
{

/// Cells of a terminal that the text takes at most. Where terminals disagree, it is the larger number.
int cellsOf(const QString& text);

/// The text within so many cells, with dots in place of its middle when that is too long.
QString fittedToCells(const QString& text, int cells);

} // namespace zr
