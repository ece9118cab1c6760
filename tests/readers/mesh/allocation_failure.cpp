#include "tests/readers/mesh/allocation_failure.h"

#include <QString>

#include <cstdlib>
#include <new>

namespace zr::test
{
namespace
{

std::size_t failingBytes = 0;
Thrown failure = Thrown::BadAlloc;

} // namespace

FailingAllocation::FailingAllocation(std::size_t bytes, Thrown thrown)
{
    failure = thrown;
    failingBytes = bytes;
}

FailingAllocation::~FailingAllocation()
{
    failingBytes = 0;
}

void* allocate(std::size_t bytes)
{
    if (bytes != 0 && bytes == failingBytes) {
        failingBytes = 0;
        if (failure == Thrown::ErrorKey)
            throw QStringLiteral("someErr");
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(bytes != 0 ? bytes : 1))
        return memory;
    throw std::bad_alloc();
}

} // namespace zr::test

void* operator new(std::size_t bytes)
{
    return zr::test::allocate(bytes);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
