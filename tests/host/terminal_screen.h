#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace zr::test
{

/// What a terminal shows of bytes that are written to it, as far as it goes: characters by their cells, the end of a
/// line, its start, and the sequence that erases its rest. Anything else fails the test.
class TerminalScreen
{
public:
    TerminalScreen(const QByteArray& bytes, int columns);

    /// The lines at the end, without empty ones at its bottom.
    const QStringList& lines() const { return m_lines; }

    /// What the line showed each time its rest had been erased.
    const QStringList& frames() const { return m_frames; }

    /// The most cells that a line took which was written over later.
    int widestFrame() const { return m_widestFrame; }

private:
    void put(uint character);
    void endLine();
    QString line() const;

    int m_columns;
    int m_column = 0;
    QStringList m_cells; ///< of the line; a wide character is followed by an empty cell
    QStringList m_lines;
    QStringList m_frames;
    int m_widestFrame = 0;
};

} // namespace zr::test
