// SPDX-License-Identifier: MIT
#include "host/text_width.h"

#include <QVector>

#include <algorithm>
#include <iterator>

namespace zr
{
namespace
{

const QString kDots = QStringLiteral("..."); // in every terminal's encoding

// Blocks with characters that take two cells: scripts of East Asia, and pictures. In mixed blocks, all count as wide.
// tests/host/progress_test.cpp compares them with the C library's.
struct Block {
    uint first;
    uint last;
};
constexpr Block kWideBlocks[] = {
    {0x1100, 0x115F}, {0x231A, 0x23FF}, {0x25FD, 0x25FE}, {0x2600, 0x27BF},   {0x2B1B, 0x2B55},   {0x2E80, 0x303E},
    {0x3041, 0x4DBF}, {0x4DC0, 0x4DFF}, {0x4E00, 0xA4CF}, {0xA960, 0xA97F},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
    {0xFE10, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6}, {0x16FE0, 0x1B2FF}, {0x1F000, 0x1FAFF}, {0x20000, 0x3FFFD},
};

constexpr uint kPictureSelector = 0xFE0F; // makes a letter a picture, which takes one cell more
constexpr uint kFormerMark = 0x1734;      // has a cell of its own since Unicode 14

int cellsOf(uint character)
{
    if (character == kPictureSelector || character == kFormerMark)
        return 1;
    const QChar::Category category = QChar::category(character);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing)
        return 0;
    const bool isWide = std::any_of(std::begin(kWideBlocks), std::end(kWideBlocks), [character](const Block& block) {
        return character >= block.first && character <= block.last;
    });
    return isWide ? 2 : 1;
}

// How many characters from `from` on, in steps of `step`, fit into `cells`.
int fitting(const QVector<uint>& characters, int from, int step, int cells)
{
    int count = 0;
    for (int i = from; i >= 0 && i < characters.size(); i += step) {
        cells -= cellsOf(characters[i]);
        if (cells < 0)
            break;
        ++count;
    }
    return count;
}

} // namespace

int cellsOf(const QString& text)
{
    int cells = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters)
        cells += cellsOf(character);
    return cells;
}

QString fittedToCells(const QString& text, int cells)
{
    if (cellsOf(text) <= cells)
        return text;
    if (cells <= kDots.size())
        return kDots.left(std::max(0, cells));
    const QVector<uint> characters = text.toUcs4();
    const int room = cells - kDots.size();
    const int head = fitting(characters, 0, 1, (room + 1) / 2);
    const int tail = fitting(characters, characters.size() - 1, -1, room / 2);
    return QString::fromUcs4(characters.constData(), head) + kDots +
           QString::fromUcs4(characters.constData() + characters.size() - tail, tail);
}

} // namespace zr
