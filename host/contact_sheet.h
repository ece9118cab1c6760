#pragma once

#include <QImage>
#include <QString>

#include <vector>

namespace zr
{

/// One picture that shows many, each with its name below it.
class ContactSheet
{
public:
    /// Keeps a scaled copy of `picture`.
    void add(const QImage& picture, const QString& name);

    bool isEmpty() const { return m_cells.empty(); }

    /// The sheet. Needs the application object, for its fonts.
    QImage draw() const;

private:
    struct Cell {
        QImage picture;
        QString name;
    };
    std::vector<Cell> m_cells;
};

} // namespace zr
