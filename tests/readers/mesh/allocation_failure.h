#pragma once

#include <cstddef>

namespace zr::test
{

/// What an allocation of a certain size throws in this test program instead of giving memory.
enum class Thrown { BadAlloc, ErrorKey };

/// Lets every allocation of exactly `bytes` bytes with operator new fail while the object lives.
class FailingAllocation
{
public:
    FailingAllocation(std::size_t bytes, Thrown thrown);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
};

} // namespace zr::test
