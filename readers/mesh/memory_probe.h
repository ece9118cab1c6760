// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cstddef>
#include <optional>

namespace zr
{

/// The two figures by which the loaders stop before a model takes the machine's last memory.
struct MemoryFigures {
    quint64 availableBytes; ///< physical memory that can be had without swapping
    quint32 loadPercent;    ///< share of the physical memory that is in use, 0 to 100

    /// Whether loading must stop.
    bool areShort() const { return loadPercent >= 90; }
};

/// Where a mesh takes the figures from: systemMemory(), except in tests, which simulate a machine without memory.
using MemoryProbe = MemoryFigures (*)();

/// The figures of this machine at this moment. May be called from any thread.
MemoryFigures systemMemory();

/// The number of triangles that a loop may add between two calls of systemMemory(): few enough to take little memory,
/// and enough for the calls to cost nothing.
extern const int kTrianglesPerReading;

/// Watches the memory during one loop that adds triangles. Made before the loop; any other probe than systemMemory()
/// is asked each time.
class MemoryWatch
{
public:
    explicit MemoryWatch(MemoryProbe probe)
        : m_probe(probe), m_trianglesPerReading(probe == systemMemory ? kTrianglesPerReading : 1)
    {
    }

    /// Whether loading must stop. To be asked after each triangle; the first time reads the figures.
    bool isShort()
    {
        if (--m_trianglesToReading > 0)
            return false;
        m_trianglesToReading = m_trianglesPerReading;
        return m_probe().areShort();
    }

private:
    const MemoryProbe m_probe;
    const int m_trianglesPerReading;
    int m_trianglesToReading = 1;
};

/// On Linux, where alone this exists: the figures in the text of /proc/meminfo; nullopt when a needed line is missing
/// or makes no sense. The page cache does not count as used memory, since the kernel gives it away on demand.
std::optional<MemoryFigures> memoryFiguresFromMeminfo(const char* text);

} // namespace zr
