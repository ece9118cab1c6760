// SPDX-License-Identifier: MIT
#include "readers/mesh/position_list.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace zr::test
{
namespace
{

std::array<float, 3> at(const PositionList& list, qint32 index)
{
    std::array<float, 3> point{};
    storeVec3(point.data(), list.at(index));
    return point;
}

TEST(PositionListTest, HoldsThePointsInOrder)
{
    constexpr int count = 100000;
    PositionList list(qint64{count} * 30);
    for (int i = 0; i < count; ++i) {
        const auto number = static_cast<float>(i);
        list.append(Vec4{number, -number, number / 2, 99}, qint64{i} * 30);
    }
    for (const int i : {0, 1, 1023, 1024, 1025, 54321, count - 1}) {
        const auto number = static_cast<float>(i);
        EXPECT_EQ(at(list, i), (std::array<float, 3>{number, -number, number / 2})) << i;
    }
}

TEST(PositionListTest, IndexOutsideIsTheOrigin)
{
    PositionList list(100);
    for (const qint32 index : {0, 1, -1, std::numeric_limits<qint32>::max(), std::numeric_limits<qint32>::min()})
        EXPECT_EQ(at(list, index), (std::array<float, 3>{})) << index;
    list.append(Vec4{1, 2, 3, 0}, 0);
    EXPECT_EQ(at(list, 0), (std::array<float, 3>{1, 2, 3}));
    for (const qint32 index : {1, 2, 1023, 1024, -1, std::numeric_limits<qint32>::max()})
        EXPECT_EQ(at(list, index), (std::array<float, 3>{})) << index;
}

} // namespace
} // namespace zr::test
