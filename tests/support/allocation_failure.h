#pragma once

#include <cstddef>

// Test programs that link zr_allocation_failure have an operator new of their own, and on Linux, unless a sanitizer
// needs it itself, a malloc().

namespace zr::test
{

/// What an allocation of a certain size throws instead of giving memory.
enum class Thrown { BadAlloc, ErrorKey };

/// Lets the next allocation of exactly `bytes` bytes with operator new fail while the object lives.
class FailingAllocation
{
public:
    FailingAllocation(std::size_t bytes, Thrown thrown);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
};

/// Counts the allocations that the product's code makes on this thread while the object lives, and lets one of them
/// fail.
///
/// Those are allocations with operator new in the program itself, and what Qt allocates at once when the program calls
/// it, which are the strings, byte arrays, vectors and pictures of the product. What Qt and other libraries allocate
/// for themselves, deeper in their calls, does not count and never fails.
class CountedAllocations
{
public:
    /// `failing` is the number of the allocation that fails, counted from 1; 0 lets none fail.
    explicit CountedAllocations(int failing);
    ~CountedAllocations();
    CountedAllocations(const CountedAllocations&) = delete;
    CountedAllocations& operator=(const CountedAllocations&) = delete;

    int made() const;

    /// How many of them were not freed yet.
    int alive() const;
};

} // namespace zr::test
