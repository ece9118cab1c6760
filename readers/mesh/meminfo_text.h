#pragma once

#include "readers/mesh/memory_probe.h"

#include <optional>

namespace zr
{

/// The figures in the text of Linux's /proc/meminfo. The page cache does not count as used memory, since the kernel
/// gives it away on demand. Nothing when a needed line is missing or makes no sense.
std::optional<MemoryFigures> memoryFiguresFromMeminfo(const char* text);

} // namespace zr
