#pragma once

#include <QtGlobal>

#include <cstddef>

namespace zr
{

/// The two figures by which the loaders stop before a model takes the machine's last memory.
struct MemoryFigures {
    quint64 availableBytes; ///< physical memory that can be had without swapping
    quint32 loadPercent;    ///< share of the physical memory that is in use, 0 to 100
};

/// Who asks for the figures: a step of its own, or a loop that asks after each triangle.
enum class MemoryQuery { Single, InLoop };

/// Where a mesh takes the figures from: systemMemory(), but for tests that play a machine without memory.
using MemoryProbe = MemoryFigures (*)(MemoryQuery);

/// The figures of this machine at this moment; in a loop on Linux, at most some thousand triangles ago. May be called
/// from any thread.
MemoryFigures systemMemory(MemoryQuery query);

/// Tells the platform that `bytes` bytes from `begin` are about to be filled from front to back, so that it may back
/// them with large pages: a chunk's first touch otherwise costs more than parsing what goes into it.
/// Changes no content; does nothing where the platform has no such call.
void expectSequentialFill(void* begin, std::size_t bytes);

} // namespace zr
