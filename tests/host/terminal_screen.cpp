// SPDX-License-Identifier: MIT
#include "tests/host/terminal_screen.h"

#include <QVector>

#include <algorithm>
#include <cwchar>

#include <gtest/gtest.h>

namespace zr::test
{

TerminalScreen::TerminalScreen(const QByteArray& bytes, int columns) : m_columns(columns)
{
    const QString kEraseRest = QStringLiteral("\x1b[K");
    const QVector<uint> characters = QString::fromUtf8(bytes).toUcs4();
    for (int i = 0; i < characters.size(); ++i) {
        if (characters[i] == '\r') {
            m_column = 0;
        } else if (characters[i] == '\n') {
            endLine();
        } else if (QString::fromUcs4(characters.constData() + i, std::min(3, characters.size() - i)) == kEraseRest) {
            m_cells = m_cells.mid(0, m_column);
            m_frames.append(line());
            m_widestFrame = std::max(m_widestFrame, static_cast<int>(m_cells.size()));
            i += 2;
        } else {
            put(characters[i]);
        }
    }
    endLine();
    while (!m_lines.isEmpty() && m_lines.last().isEmpty())
        m_lines.removeLast();
}

void TerminalScreen::put(uint character)
{
    const int width = wcwidth(static_cast<wchar_t>(character));
    EXPECT_GE(width, 0) << "unprintable character: " << character;
    const QString text = QString::fromUcs4(&character, 1);
    if (width == 0 && m_column > 0)
        m_cells[m_column - 1] += text;
    if (width <= 0)
        return;
    if (m_column + width > m_columns)
        endLine();
    while (m_cells.size() < m_column + width)
        m_cells.append(QString());
    m_cells[m_column] = text;
    if (width == 2)
        m_cells[m_column + 1].clear();
    m_column += width;
}

void TerminalScreen::endLine()
{
    m_lines.append(line());
    m_cells.clear();
    m_column = 0;
}

QString TerminalScreen::line() const
{
    return m_cells.join(QString());
}

} // namespace zr::test
