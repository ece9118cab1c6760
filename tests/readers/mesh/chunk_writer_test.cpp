#include "readers/mesh/chunk_writer.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kFloats = 9;
constexpr qint64 kBytesPerTriangle = 100;

class ChunkWriterTest : public ::testing::Test
{
protected:
    ~ChunkWriterTest() override { qDeleteAll(m_chunks); }

    // Writes triangles whose floats count on.
    void write(int triangles, int trianglesPerChunk)
    {
        ChunkWriter writer(m_chunks, kFloats, trianglesPerChunk, triangles * kBytesPerTriangle);
        float value = 0;
        for (int i = 0; i < triangles; ++i) {
            float* const room = writer.next(i * kBytesPerTriangle);
            for (int k = 0; k < kFloats; ++k)
                room[k] = value++;
        }
        writer.finish();
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

TEST_F(ChunkWriterTest, EvenFileReservesLittleMoreThanItNeeds)
{
    write(100000, 1000000);
    EXPECT_LT(m_chunks[0]->capacity(), 1.3 * 100000 * kFloats);
}

TEST_F(ChunkWriterTest, WrittenTrianglesAreDroppedWithoutFinish)
{
    {
        ChunkWriter writer(m_chunks, kFloats, 1000, 0);
        std::fill_n(writer.next(0), kFloats, 0.0F);
    }
    EXPECT_TRUE(m_chunks.isEmpty());
}

} // namespace
} // namespace zr::test
