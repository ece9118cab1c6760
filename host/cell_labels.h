// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace zr
{

/// The text below a cell of a contact sheet: the file's name, and as many folders above it as distinguish it from the
/// other files.
struct CellLabel {
    QString text;       ///< printable, on one line
    int keptAt = -1;    ///< start of the part that differs from equal names; -1 when the name is unique
    int keptLength = 0; ///< of that part
};

/// The labels of the files at `paths`, in their order. A path that is there twice has the same label twice.
std::vector<CellLabel> cellLabels(const QStringList& paths);

} // namespace zr
