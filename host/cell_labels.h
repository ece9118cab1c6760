#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace zr
{

/// What stands below a cell of a contact sheet: the file's name, and as many folders above it as tell it from the
/// other files.
struct CellLabel {
    QString text;    ///< of characters that show, on one line
    int keptAt = -1; ///< where the part starts by which it differs from equal names; -1 when its name is the only one
    int keptLength = 0; ///< of that part
};

/// The labels of the files at `paths`, in their order. A path that is there twice has the same label twice.
std::vector<CellLabel> cellLabels(const QStringList& paths);

} // namespace zr
