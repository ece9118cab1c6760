#include "readers/mesh/mesh.h"

#include "readers/mesh/triangle.h"

namespace zr
{
namespace
{

constexpr quint32 kShortMemoryPercent = 90;
constexpr double kLargestModel = 10000.0;
static_assert(kLargestModel == 10000, "reason::kModelSizeWrong names it");

} // namespace

Mesh::Mesh(bool positionsOnly, MemoryProbe probe) : m_positionsOnly(positionsOnly), m_probe(probe)
{
    setBounds(Bounds());
}

Mesh::~Mesh()
{
    clear();
}

void Mesh::clear()
{
    qDeleteAll(m_chunks);
    m_chunks.clear();
}

void Mesh::setBounds(const Bounds& bounds)
{
    storeVec3(m_max.data(), bounds.max);
    storeVec3(m_min.data(), bounds.min);
}

bool Mesh::exceedsFreeMemory(quint64 bytes) const
{
    return bytes >= m_probe(MemoryQuery::Single).availableBytes * 2 / 3;
}

bool Mesh::memoryIsShort(MemoryQuery query) const
{
    return m_probe(query).loadPercent >= kShortMemoryPercent;
}

float Mesh::largestExtent() const
{
    const float dx = m_max[0] - m_min[0];
    const float dy = m_max[1] - m_min[1];
    const float dz = m_max[2] - m_min[2];
    const float side = dz > dy ? dz : dy;
    return side > dx ? side : dx;
}

bool Mesh::extentIsUsable(float extent)
{
    return !(extent == 0.0F || double{extent} > kLargestModel);
}

} // namespace zr
