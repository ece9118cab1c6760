// SPDX-License-Identifier: MIT
// malloc() and related functions for programs that let allocations fail. They call the C library's own.

#include "tests/support/allocation_hooks.h"

#include <cerrno>
#include <cstdlib>

extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier): the C library's names
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void __libc_free(void* block);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace
{

using zr::test::CountedAllocation;

void* outOfMemory()
{
    errno = ENOMEM;
    return nullptr;
}

void* counted(const CountedAllocation& allocation, void* block)
{
    if (allocation.counts && block)
        zr::test::addLiveBlock(block);
    return block;
}

} // namespace

extern "C" {
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's names are reserved ones

void* malloc(std::size_t bytes) noexcept
{
    const CountedAllocation allocation = zr::test::countAllocation(__builtin_return_address(0));
    return allocation.fails ? outOfMemory() : counted(allocation, __libc_malloc(bytes));
}

void* calloc(std::size_t count, std::size_t bytes) noexcept
{
    const CountedAllocation allocation = zr::test::countAllocation(__builtin_return_address(0));
    return allocation.fails ? outOfMemory() : counted(allocation, __libc_calloc(count, bytes));
}

void* realloc(void* block, std::size_t bytes) noexcept
{
    const CountedAllocation allocation = zr::test::countAllocation(__builtin_return_address(0));
    if (allocation.fails)
        return outOfMemory();
    zr::test::removeLiveBlock(block);
    return counted(allocation, __libc_realloc(block, bytes));
}

void free(void* block) noexcept
{
    zr::test::removeLiveBlock(block);
    __libc_free(block);
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
}
