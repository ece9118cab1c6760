#pragma once

#include <cstddef>

// What the replaced allocation functions ask and tell.

namespace zr::test
{

/// Counts an allocation if it is one of the product's, and whether it has to fail. `caller` is the return address of
/// the allocation function.
struct CountedAllocation {
    bool counts;
    bool fails;
};
CountedAllocation countAllocation(const void* caller);

/// Notes a block that counts, and forgets one that is freed.
void addLiveBlock(const void* block);
void removeLiveBlock(const void* block);

} // namespace zr::test
