// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/obj_statement.h"
#include "readers/mesh/position_list.h"
#include "readers/mesh/text/line_tokenizer.h"
#include "readers/mesh/text/reference_number.h"
#include "readers/mesh/text/scalar_number.h"
#include "readers/mesh/text/text_blocks.h"

namespace zr
{

/// The lines of an OBJ file in the server's reading.
class ServerObjLines
{
public:
    static constexpr TextBlocks::LongLines kLongLines = TextBlocks::LongLines::Condensed;

    /// Whether positions that no face uses belong to the model's size.
    static constexpr bool kAllPositionsCount = true;

    /// The first line of a run.
    static const char* enter(const TextBlocks& run, std::size_t /*positions*/) { return run.begin(); }

    /// Reads the line at `line` and moves on to the next one.
    ObjLineKind take(const char*& line, const char* end, std::size_t /*positions*/)
    {
        const char* const begin = line;
        const char* const text = skipBlanks(begin);
        const char* read = nullptr;
        ObjLineKind kind = ObjLineKind::Other;
        if (isBlank(text[1])) {
            if (*text == 'v' || *text == 'V') {
                read = readPoint(text + 1, m_point);
                kind = ObjLineKind::Vertex;
            } else if (*text == 'f' || *text == 'F') {
                read = readIndices(text + 1, m_face);
                kind = ObjLineKind::Face;
            }
        }
        line = lineAfter(read ? read : text, end);
        // There may be a byte order mark before a keyword.
        const bool isOdd = !read && (kind != ObjLineKind::Other || *text == '\xEF');
        return isOdd ? takeAny(begin, line) : kind;
    }

    /// What the last line was, if it was a vertex.
    Vec4 point() const { return m_point; }

    /// Calls use(a, b, c) for each triangle of the last line, if it was a face.
    template <typename Use>
    void forEachTriangle(const PositionList& positions, Use use) const
    {
        use(positions.at(m_face[0]), positions.at(m_face[1]), positions.at(m_face[2]));
    }

private:
    // The line in any form.
    ObjLineKind takeAny(const char* begin, const char* end)
    {
        const QByteArrayList tokens = tokensOf(begin, end);
        if (tokens.size() < kMaxTokens)
            return ObjLineKind::Other;
        if (tokens[0].compare("v", Qt::CaseInsensitive) == 0) {
            m_point = reference::toPoint(tokens);
            return ObjLineKind::Vertex;
        }
        if (tokens[0].compare("f", Qt::CaseInsensitive) == 0) {
            m_face = reference::toIndices(tokens);
            return ObjLineKind::Face;
        }
        return ObjLineKind::Other;
    }

    Vec4 m_point{};
    Indices m_face{};
};

} // namespace zr
