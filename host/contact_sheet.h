// SPDX-License-Identifier: MIT
#pragma once

#include "host/cell_labels.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace zr
{

/// The names of a contact sheet's pictures for `count` files: `file`, and when one page is not enough, the same with
/// numbers: all.png, all-2.png, all-3.png.
QStringList sheetFiles(const QString& file, int count);

/// Overview pictures with one cell for each file, with its name below. Cells are in the order of the files; each page
/// is handed over as soon as it is full, and only the current one is kept.
class ContactSheet
{
public:
    /// Saves a page as `file`, one of sheetFiles().
    using SavePage = std::function<void(const QImage& page, const QString& file)>;

    /// The picture as a cell shows it.
    static QImage cellPicture(const QImage& picture);

    /// The sheet of the files at `paths`.
    ContactSheet(const QString& file, const QStringList& paths, SavePage savePage);

    /// Adds the next file's cell, with its picture, which may be a cellPicture() already.
    void addPicture(const QImage& picture);

    /// Adds the next file's cell, with the reason why it has no picture.
    void addFailure(const QString& reason);

    /// Hands over the current page, if any, cropped to its cells. For runs that end early.
    void finish();

private:
    struct Cell {
        QRect area;
        CellLabel label;
        QString reason; ///< empty when there is a picture
    };

    QRect nextCell();
    void addCell(const Cell& cell);
    void endPage();

    QString m_file;
    std::vector<CellLabel> m_labels;
    SavePage m_savePage;
    int m_added = 0;
    QImage m_page;             ///< null between two pages
    std::vector<Cell> m_cells; ///< of the page
};

} // namespace zr
