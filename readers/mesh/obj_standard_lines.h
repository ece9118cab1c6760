// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/obj_statement.h"
#include "readers/mesh/position_list.h"
#include "readers/mesh/text/corner_tokens.h"
#include "readers/mesh/text/scalar_number.h"
#include "readers/mesh/text/text_blocks.h"

#include <cstring>

namespace zr
{

/// The lines of an OBJ file as all other programs write them, with the members of ServerObjLines.
class StandardObjLines
{
public:
    static constexpr TextBlocks::LongLines kLongLines = TextBlocks::LongLines::InPieces;
    static constexpr bool kAllPositionsCount = false;

    /// `positions` came before the run.
    const char* enter(const TextBlocks& run, std::size_t positions)
    {
        const bool hasMark = m_isFirst && std::memcmp(run.begin(), "\xEF\xBB\xBF", 3) == 0;
        m_isFirst = false;
        // Only statements can go on where lines are cut.
        if (run.isPiece() && !m_statement.isOpen())
            m_statement.start(positions);
        return run.begin() + (hasMark ? 3 : 0);
    }

    ObjLineKind take(const char*& line, const char* end, std::size_t positions)
    {
        if (m_statement.isOpen())
            return takeStatement(line, end);
        const char* const text = skipBlanks(line);
        const bool isVertex = *text == 'v' || *text == 'V';
        const bool isFace = *text == 'f' || *text == 'F';
        if (isBlank(text[1]) && (isVertex || isFace)) {
            const char* const read = isVertex ? readPoint(text + 1, m_point) : readFace(text + 1, positions);
            if (read) {
                line = lineAfter(read, end);
                return isVertex ? ObjLineKind::Vertex : ObjLineKind::Face;
            }
        } else if (!mayBeOdd(text, isVertex || isFace)) {
            line = lineAfter(text, end);
            return ObjLineKind::Other;
        }
        m_statement.start(positions);
        return takeStatement(line, end);
    }

    Vec4 point() const { return m_point; }

    /// A face with more corners is a fan around its first one.
    template <typename Use>
    void forEachTriangle(const PositionList& positions, Use use) const
    {
        for (std::size_t i = 2; i < m_corners.count(); ++i)
            use(positions[m_corners[0]], positions[m_corners[i - 1]], positions[m_corners[i]]);
    }

private:
    // Whether a line without a blank after its first letter may be a vertex or a face. Most that are neither have
    // another small letter there, all of which are greater than what may end a keyword.
    static bool mayBeOdd(const char* text, bool hasKeyword) { return *text == '\r' || (hasKeyword && text[1] <= '\\'); }

    // The line's end, or null for what is left to the statement.
    const char* readFace(const char* text, std::size_t positions)
    {
        const auto addCorner = [this](quint64 number, bool isNegative) { m_corners.add(number, isNegative); };
        m_corners.start(positions);
        text = skipBlanks(text);
        Indices three{};
        if (const char* const read = fast::readIndices(text, three)) {
            m_corners.addFirstThree(three);
            text = read;
            if (fast::lineEndsAt(text))
                return text;
        }
        return fast::readCorners(text, addCorner);
    }

    ObjLineKind takeStatement(const char*& line, const char* end)
    {
        line = m_statement.add(line, end);
        if (m_statement.isOpen())
            return ObjLineKind::Unfinished;
        m_point = m_statement.point();
        return m_statement.kind();
    }

    Vec4 m_point{};
    FaceCorners m_corners;
    ObjStatement m_statement{m_corners};
    bool m_isFirst = true;
};

} // namespace zr
