// SPDX-License-Identifier: MIT
#include "core/large_pages.h"

#include <cstdint>

#include <sys/mman.h>

namespace zr
{

void expectSequentialFill(void* begin, std::size_t bytes)
{
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    const std::size_t toBoundary = (kLargePageBytes - address % kLargePageBytes) % kLargePageBytes;
    if (bytes < toBoundary + kLargePageBytes)
        return;
    const std::size_t wholePages = (bytes - toBoundary) / kLargePageBytes * kLargePageBytes;
    // A refusal costs speed only.
    madvise(static_cast<char*>(begin) + toBoundary, wholePages, MADV_HUGEPAGE);
}

} // namespace zr
