// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "readers/mesh/text/text_bytes.h"

#include <QtGlobal>

#include <algorithm>
#include <string>
#include <vector>

namespace zr
{

/// What a line of an OBJ file gives to the model.
enum class ObjLineKind {
    Other, ///< nothing
    Vertex,
    Face,
    Unfinished, ///< nothing yet: its statement goes on after the text at hand
};

/// The corners of one face as places among the positions of the file.
class FaceCorners
{
public:
    /// Begins a face after `positions` positions.
    void start(std::size_t positions)
    {
        m_positions = positions;
        m_count = 0;
        m_allExist = true;
    }

    /// Adds the corner with this number: from 1 on, or, if it is negative, back from the last position, which is 1.
    /// Numbers without a position wrap to places that none has: 0 - 1 is the max number.
    void add(quint64 number, bool isNegative)
    {
        const auto place = static_cast<std::size_t>(isNegative ? m_positions - number : number - 1);
        m_allExist = m_allExist && place < m_positions;
        if (m_count == m_places.size())
            m_places.resize(2 * m_count);
        m_places[m_count] = place;
        m_count += m_allExist ? 1 : 0;
    }

    /// The same for the first three, which are not negative.
    void addFirstThree(const Indices& numbers)
    {
        std::size_t max = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            m_places[i] = static_cast<std::size_t>(numbers[i]) - 1;
            max = std::max(max, m_places[i]);
        }
        m_allExist = max < m_positions;
        m_count = 3;
    }

    void addInvalid() { m_allExist = false; }

    /// How many corners there are; 0 when one of them does not exist, since then there is no face.
    std::size_t count() const { return m_allExist ? m_count : 0; }

    std::size_t operator[](std::size_t i) const { return m_places[i]; }

private:
    std::vector<std::size_t> m_places = std::vector<std::size_t>(16); ///< used again for each face
    std::size_t m_positions = 0;
    std::size_t m_count = 0;
    bool m_allExist = true;
};

/// One statement of an OBJ file, byte by byte: lines of any length, in pieces or continued, with numbers in any form.
/// This is what says how a file is understood; the faster ways of reading leave to it what they do not accept.
///
/// A statement is a line up to a comment or a zero byte. Carriage returns do not count. While a vertex has fewer than
/// three numbers, and in any face, a backslash at the end of a line stands for a blank, and the next line belongs to
/// the statement, too.
class ObjStatement
{
public:
    explicit ObjStatement(FaceCorners& corners) : m_corners(corners) {}

    /// Begins a statement after `positions` positions.
    void start(std::size_t positions);

    /// Takes the bytes up to the statement's end and returns where that is; `end` and isOpen() when it goes on.
    const char* add(const char* begin, const char* end);

    bool isOpen() const { return m_isOpen; }

    /// The kind of a statement that has ended.
    ObjLineKind kind() const { return m_kind; }

    /// The vertex. A number that is missing or cannot be read is 0.
    Vec4 point() const { return m_point; }

private:
    void addByte(char c);
    void endLine();
    void endToken();
    void takeKeyword();
    void takeNumber();
    void takeCorner();

    FaceCorners& m_corners;
    ObjLineKind m_kind = ObjLineKind::Other;
    Vec4 m_point{};
    std::string m_token;     ///< cut where it is already too long for a number
    int m_tokens = 0;        ///< complete ones
    char m_last = '\0';      ///< the last byte that counts
    bool m_isOpen = false;   ///< more bytes belong to it
    bool m_isSettled = true; ///< nothing that follows on its line matters
};

} // namespace zr
