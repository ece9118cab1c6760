// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "readers/mesh/fill_estimate.h"

#include <vector>

namespace zr
{

/// The vertex positions of an OBJ file in file order, three floats each.
class PositionList
{
public:
    explicit PositionList(qint64 fileBytes) : m_estimate(fileBytes) {}

    /// `filePosition`: the bytes of the file that came before the vertex.
    void append(Vec4 point, qint64 filePosition)
    {
        if (m_count == m_room)
            makeRoom(filePosition);
        // The float after the point belongs to the next one, or is the spare one at the end.
        storeVec4(m_floats.data() + 3 * m_count, point);
        ++m_count;
    }

    std::size_t count() const { return m_count; }

    /// One of them.
    Vec4 operator[](std::size_t index) const { return loadVec4(m_floats.data() + 3 * index); }

    /// The origin for an index that no position has.
    Vec4 at(qint32 index) const
    {
        if (index < 0 || static_cast<std::size_t>(index) >= m_count)
            return Vec4{};
        return (*this)[static_cast<std::size_t>(index)];
    }

private:
    void makeRoom(qint64 filePosition);

    FillEstimate m_estimate;
    std::vector<float> m_floats; ///< of m_room positions, and one spare
    std::size_t m_count = 0;
    std::size_t m_room = 0;
};

} // namespace zr
