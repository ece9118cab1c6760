// SPDX-License-Identifier: MIT
#include "readers/mesh/chunk_writer.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kFloats = 9;

class ChunkWriterTest : public ::testing::Test
{
protected:
    ~ChunkWriterTest() override { qDeleteAll(m_chunks); }

    // Writes triangles whose floats count on.
    void write(int triangles, int trianglesPerChunk)
    {
        ChunkWriter writer(m_chunks, kFloats * trianglesPerChunk);
        float value = 0;
        for (int i = 0; i < triangles; ++i) {
            float* const room = writer.next(kFloats, [&] { return (triangles - i) * kFloats; });
            for (int k = 0; k < kFloats; ++k)
                room[k] = value++;
        }
        EXPECT_EQ(writer.count(), triangles * kFloats);
        EXPECT_EQ(writer.finish(), triangles > 0);
    }

    void expectAllFloats(int triangles) const
    {
        float value = 0;
        bool same = true;
        for (const MeshChunk* chunk : m_chunks) {
            for (const float written : *chunk)
                same = same && written == value++;
        }
        EXPECT_TRUE(same);
        EXPECT_EQ(value, static_cast<float>(triangles * kFloats));
    }

    TriangleChunks m_chunks;
};

TEST_F(ChunkWriterTest, NothingWrittenGivesNoChunk)
{
    write(0, 100);
    EXPECT_TRUE(m_chunks.isEmpty());
}

TEST_F(ChunkWriterTest, ChunkHoldsWhatWasWritten)
{
    for (const int triangles : {1, 255, 256, 257, 5000, 300000}) {
        qDeleteAll(m_chunks);
        m_chunks.clear();
        write(triangles, 1000000);
        ASSERT_EQ(m_chunks.size(), 1);
        EXPECT_EQ(m_chunks[0]->size(), triangles * kFloats);
        expectAllFloats(triangles);
    }
}

TEST_F(ChunkWriterTest, ChunksAreCutAtTheirLimit)
{
    write(2000, 700);
    ASSERT_EQ(m_chunks.size(), 3);
    EXPECT_EQ(m_chunks[0]->size(), 700 * kFloats);
    EXPECT_EQ(m_chunks[1]->size(), 700 * kFloats);
    EXPECT_EQ(m_chunks[2]->size(), 600 * kFloats);
    expectAllFloats(2000);
}

TEST_F(ChunkWriterTest, FullChunkIsNotFollowedByAnEmptyOne)
{
    write(1400, 700);
    EXPECT_EQ(m_chunks.size(), 2);
}

TEST_F(ChunkWriterTest, WhatIsExpectedIsReservedAndNoMore)
{
    write(100000, 1000000);
    EXPECT_EQ(m_chunks[0]->capacity(), 100000 * kFloats);
}

TEST_F(ChunkWriterTest, MoreThanExpectedIsNotLostAndGrowsByAHalf)
{
    ChunkWriter writer(m_chunks, 1000000);
    int lost = 0;
    for (int i = 0; i < 300000; ++i)
        *writer.next(1, [] { return 1; }) = static_cast<float>(i);
    EXPECT_TRUE(writer.finish());
    ASSERT_EQ(m_chunks.size(), 1);
    for (int i = 0; i < 300000; ++i)
        lost += static_cast<int>(m_chunks[0]->at(i)) == i ? 0 : 1;
    EXPECT_EQ(lost, 0);
    EXPECT_LE(m_chunks[0]->capacity(), 1.6 * 300000);
}

TEST_F(ChunkWriterTest, PieceThatTheChunkEndsBeforeGetsNoRoom)
{
    ChunkWriter writer(m_chunks, 5);
    const auto toCome = [] { return 9; };
    std::fill_n(writer.next(3, toCome), 3, 1.0F);
    EXPECT_EQ(writer.next(3, toCome), nullptr);
    EXPECT_FALSE(writer.endFullChunk());
    std::fill_n(writer.next(2, toCome), 2, 2.0F);
    EXPECT_TRUE(writer.endFullChunk());
    EXPECT_FALSE(writer.endFullChunk());
    ASSERT_EQ(m_chunks.size(), 1);
    EXPECT_EQ(*m_chunks[0], (MeshChunk{1, 1, 1, 2, 2}));
    EXPECT_EQ(writer.count(), 5);
    EXPECT_FALSE(writer.finish());
}

TEST_F(ChunkWriterTest, WrittenTrianglesAreDroppedWithoutFinish)
{
    {
        ChunkWriter writer(m_chunks, 1000);
        std::fill_n(writer.next(kFloats, [] { return 0; }), kFloats, 0.0F);
    }
    EXPECT_TRUE(m_chunks.isEmpty());
}

} // namespace
} // namespace zr::test
