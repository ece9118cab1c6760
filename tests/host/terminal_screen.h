// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace zr::test
{

/// What a terminal shows for the bytes written to it. It understands printable characters, line feed, carriage return,
/// and the sequence that erases the rest of the line; anything else fails the test.
class TerminalScreen
{
public:
    TerminalScreen(const QByteArray& bytes, int columns);

    /// The final lines, without empty ones at the bottom.
    const QStringList& lines() const { return m_lines; }

    /// The content of the line each time its rest was erased.
    const QStringList& frames() const { return m_frames; }

    /// The max number of cells of a line that was later overwritten.
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
