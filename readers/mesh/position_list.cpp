#include "readers/mesh/position_list.h"

#include "readers/mesh/memory_probe.h"

namespace zr
{
namespace
{

// The list grows by so many positions at a time.
constexpr std::size_t kWindow = 1024;

} // namespace

void PositionList::makeRoom(qint64 filePosition)
{
    if (m_count == 0)
        m_estimate.start(filePosition);
    m_room += kWindow;
    const std::size_t floats = 3 * m_room + 1;
    if (floats > m_floats.capacity()) {
        const auto count = static_cast<double>(m_count);
        m_floats.reserve(
            std::max(floats, 3 * static_cast<std::size_t>(m_estimate.capacityFor(count, count, filePosition))));
        expectSequentialFill(m_floats.data(), m_floats.capacity() * sizeof(float));
    }
    m_floats.resize(floats);
}

} // namespace zr
