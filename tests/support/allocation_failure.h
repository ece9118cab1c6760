// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

// Test programs that link zr_allocation_failure have their own operator new, and on Linux, unless a sanitizer replaces
// it, their own malloc().

namespace zr::test
{

/// What a failing allocation throws.
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
/// Those are allocations with operator new in the program itself, and those that Qt makes directly when the program
/// calls it: the product's strings, byte arrays, vectors and pictures. What Qt and other libraries allocate deeper in
/// their calls does not count and never fails.
class CountedAllocations
{
public:
    /// `failing` is the number of the allocation that fails, counted from 1; with 0 none fails.
    explicit CountedAllocations(int failing);
    ~CountedAllocations();
    CountedAllocations(const CountedAllocations&) = delete;
    CountedAllocations& operator=(const CountedAllocations&) = delete;

    int made() const;

    /// Where each of them was made, when none was to fail: equal values mean the same innermost calls of the program.
    std::vector<std::size_t> sites() const;

    /// How many of them were not freed yet.
    int alive() const;
};

} // namespace zr::test
