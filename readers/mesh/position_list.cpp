// SPDX-License-Identifier: MIT
#include "readers/mesh/position_list.h"

#include "core/large_pages.h"

namespace zr
{
namespace
{

// The list grows by this number of positions at a time.
constexpr std::size_t kWindow = 1024;

} // namespace

void PositionList::makeRoom(qint64 filePosition)
{
    const auto count = static_cast<qint64>(m_count);
    const double toCome = m_estimate.itemsToCome(count, filePosition);
    m_room += kWindow;
    const std::size_t floats = 3 * m_room + 1;
    if (floats > m_floats.capacity()) {
        const double capacity = grownCapacity(static_cast<double>(count), toCome);
        m_floats.reserve(std::max(floats, 3 * static_cast<std::size_t>(capacity)));
        expectSequentialFill(m_floats.data(), m_floats.capacity() * sizeof(float));
    }
    m_floats.resize(floats);
}

} // namespace zr
