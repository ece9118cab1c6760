// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

// Called by the replaced allocation functions.

namespace zr::test
{

/// Counts an allocation if it is one of the product's, and decides whether it fails. `caller` is the return address of
/// the allocation function.
struct CountedAllocation {
    bool counts;
    bool fails;
};
CountedAllocation countAllocation(const void* caller);

/// Records a counted block, and removes one that is freed.
void addLiveBlock(const void* block);
void removeLiveBlock(const void* block);

} // namespace zr::test
