// SPDX-License-Identifier: MIT
#include "core/large_pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zr::test
{
namespace
{

TEST(LargePagesTest, ExpectingAFillChangesNothing)
{
    for (const std::size_t bytes : {std::size_t{0}, std::size_t{1}, std::size_t{5} << 20U}) {
        std::vector<char> memory(bytes + 1, 'x');
        expectSequentialFill(memory.data(), bytes);
        EXPECT_EQ(std::count(memory.begin(), memory.end(), 'x'), static_cast<std::ptrdiff_t>(bytes + 1));
    }
}

} // namespace
} // namespace zr::test
