// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

/// Cells of a terminal that the text takes; where terminals disagree, the max.
int cellsOf(const QString& text);

/// The text fitted to `cells`, with dots in place of its middle when it is too long.
QString fittedToCells(const QString& text, int cells);

} // namespace zr
