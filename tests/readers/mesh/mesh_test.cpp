// SPDX-License-Identifier: MIT
#include "readers/mesh/mesh.h"

#include "readers/mesh/triangle.h"
#include "tests/readers/mesh/mesh_files.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zr::test
{
namespace
{

constexpr float kLowest = -3.4028235e38F;
constexpr float kHighest = 3.4028235e38F;

// What the loaders use of their base.
class ProbeMesh : public Mesh
{
public:
    explicit ProbeMesh(MemoryProbe probe = muchMemory, ChunkLayout layout = ChunkLayout::PositionsAndNormals)
        : Mesh(layout, probe)
    {
    }

    using Mesh::extentIsUsable;
    using Mesh::floatsPerTriangle;
    using Mesh::m_chunks;
    using Mesh::m_spareChunks;
    using Mesh::maxExtent;
    using Mesh::memoryIsShort;
    using Mesh::memoryWatch;
    using Mesh::start;

    bool exceedsFreeMemory(quint64 bytes) const
    {
        return throws([&] { requireMemoryFor(bytes, kFailure); });
    }
    bool hasUsableExtent() const
    {
        return !throws([&] { requireUsableExtent(kFailure); });
    }

    void box(Vec4 min, Vec4 max)
    {
        Bounds bounds;
        bounds.min = min;
        bounds.max = max;
        setBounds(bounds);
    }

private:
    static constexpr ThrownKey kFailure{1, "failure", "reason"};

    template <typename Step>
    static bool throws(Step step)
    {
        try {
            step();
            return false;
        } catch (const QString& key) {
            EXPECT_EQ(key, "failure");
            return true;
        }
    }
};

TEST(MeshTest, StartsEmptyWithInvertedBounds)
{
    const ProbeMesh mesh;
    EXPECT_TRUE(mesh.chunks().isEmpty());
    const auto [min, max] = mesh.boundingBox();
    EXPECT_EQ(min, (Point{kHighest, kHighest, kHighest}));
    EXPECT_EQ(max, (Point{kLowest, kLowest, kLowest}));
}

TEST(MeshTest, ClearFreesTheChunksAndKeepsTheBounds)
{
    ProbeMesh mesh;
    mesh.m_chunks = {new MeshChunk(18), new MeshChunk(18)};
    mesh.m_spareChunks = {new MeshChunk(18)};
    mesh.box(Vec4{1, 2, 3, 0}, Vec4{4, 5, 6, 0});
    mesh.clear();
    EXPECT_TRUE(mesh.chunks().isEmpty());
    EXPECT_TRUE(mesh.m_spareChunks.isEmpty());
    EXPECT_EQ(mesh.boundingBox(), std::make_pair(Point{1, 2, 3}, Point{4, 5, 6}));
    mesh.m_chunks = {new MeshChunk(18)};
    mesh.start();
    EXPECT_TRUE(mesh.chunks().isEmpty());
    EXPECT_EQ(mesh.boundingBox(), ProbeMesh().boundingBox());
}

TEST(MeshTest, FloatsPerTriangleFollowTheRenderersMode)
{
    EXPECT_EQ(ProbeMesh(muchMemory, ChunkLayout::PositionsAndNormals).floatsPerTriangle(), 18);
    EXPECT_EQ(ProbeMesh(muchMemory, ChunkLayout::Positions).floatsPerTriangle(), 9);
    EXPECT_EQ(ProbeMesh(muchMemory, ChunkLayout::WholeTriangles).floatsPerTriangle(), 9);
}

TEST(MeshTest, FileOfTwoThirdsOfTheFreeMemoryIsTooLarge)
{
    const ProbeMesh mesh(memoryFor999Bytes);
    EXPECT_FALSE(mesh.exceedsFreeMemory(999));
    EXPECT_TRUE(mesh.exceedsFreeMemory(1000));
    EXPECT_TRUE(ProbeMesh(noFreeMemory).exceedsFreeMemory(0));
    // The thirds are cut last.
    const ProbeMesh uneven([] { return MemoryFigures{1502, 10}; });
    EXPECT_FALSE(uneven.exceedsFreeMemory(1000));
    EXPECT_TRUE(uneven.exceedsFreeMemory(1001));
}

TEST(MeshTest, MemoryIsShortFrom90Percent)
{
    EXPECT_FALSE(ProbeMesh(nearlyShortMemory).memoryIsShort());
    EXPECT_TRUE(ProbeMesh(shortMemory).memoryIsShort());
    EXPECT_FALSE(ProbeMesh(nearlyShortMemory).memoryWatch().isShort());
    EXPECT_TRUE(ProbeMesh(shortMemory).memoryWatch().isShort());
}

struct Box {
    Vec4 min;
    Vec4 max;
    bool usable;
};

TEST(MeshTest, MaxSideMustBeMoreThanZeroAndAtMost10000)
{
    const Box boxes[] = {
        {{1, 1, 1}, {1, 1, 1}, false},
        {{0, 0, 0}, {10000, 1, 1}, true},
        {{0, 0, 0}, {1, 10000, 1}, true},
        {{0, 0, 0}, {1, 1, 10000}, true},
        {{0, 0, 0}, {10000.001F, 1, 1}, false},
        {{0, 0, 0}, {1, 10000.001F, 1}, false},
        {{0, 0, 0}, {1, 1, 10000.001F}, false},
        {{0, 0, 0}, {0, 0, 1e-30F}, true},
        {{-INFINITY, 0, 0}, {INFINITY, 1, 1}, false},
        {{INFINITY, INFINITY, INFINITY}, {INFINITY, INFINITY, INFINITY}, true}, // NaN
    };
    int row = 0;
    for (const Box& box : boxes) {
        ProbeMesh mesh;
        mesh.box(box.min, box.max);
        EXPECT_EQ(ProbeMesh::extentIsUsable(mesh.maxExtent()), box.usable) << "row " << row;
        EXPECT_EQ(mesh.hasUsableExtent(), box.usable) << "row " << row;
        ++row;
    }
}

TEST(MeshTest, MeshWithoutPointsIsNotASizeError)
{
    const ProbeMesh mesh;
    EXPECT_EQ(mesh.maxExtent(), -INFINITY);
    EXPECT_TRUE(mesh.hasUsableExtent());
}

} // namespace
} // namespace zr::test
