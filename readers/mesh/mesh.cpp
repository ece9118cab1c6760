// SPDX-License-Identifier: MIT
#include "readers/mesh/mesh.h"

#include "core/log_file.h"
#include "readers/mesh/triangle.h"

namespace zr
{
namespace
{

constexpr double kMaxExtent = 10000.0;
static_assert(kMaxExtent == 10000, "reason::kModelSizeWrong names it");

} // namespace

Mesh::Mesh(ChunkLayout layout, MemoryProbe probe)
    : m_positionsOnly(layout == ChunkLayout::Positions), m_leavesNormalsOut(layout == ChunkLayout::WholeTriangles),
      m_probe(probe)
{
    setBounds(Bounds());
}

Mesh::~Mesh()
{
    clear();
}

void Mesh::clear()
{
    for (TriangleChunks* const chunks : {&m_chunks, &m_spareChunks}) {
        qDeleteAll(*chunks);
        chunks->clear();
    }
}

void Mesh::start()
{
    clear();
    setBounds(Bounds());
}

void Mesh::setBounds(const Bounds& bounds)
{
    storeVec3(m_max.data(), bounds.max);
    storeVec3(m_min.data(), bounds.min);
}

void Mesh::requireMemoryFor(quint64 bytes, const ThrownKey& failure) const
{
    if (bytes >= m_probe().availableBytes * 2 / 3)
        throwKey(failure);
}

float Mesh::maxExtent() const
{
    const float dx = m_max[0] - m_min[0];
    const float dy = m_max[1] - m_min[1];
    const float dz = m_max[2] - m_min[2];
    const float side = dz > dy ? dz : dy;
    return side > dx ? side : dx;
}

bool Mesh::extentIsUsable(float extent)
{
    return !(extent == 0.0F || double{extent} > kMaxExtent);
}

void Mesh::requireUsableExtent(const ThrownKey& failure) const
{
    if (!extentIsUsable(maxExtent()))
        throwKey(failure);
}

} // namespace zr
