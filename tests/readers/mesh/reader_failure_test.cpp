// SPDX-License-Identifier: MIT
// What the readers make of errors that come out of the renderer's or the mesh's making. The readers differ here.

#include "core/job/thumbnail_job.h"
#include "readers/mesh/obj_file_thumbnail.h"
#include "readers/mesh/slc_file_thumbnail.h"
#include "readers/mesh/stl_file_thumbnail.h"
#include "render/offscreen_renderer.h"
#include "tests/readers/mesh/model_reader_test.h"
#include "tests/support/allocation_failure.h"

namespace zr::test
{
namespace
{

class ReaderFailureTest : public ModelReaderTest
{
};

template <typename Reader>
void expectNoPicture(Reader& reader)
{
    reader.readFile();
    EXPECT_TRUE(reader.previewImage().isNull());
}

TEST_F(ReaderFailureTest, StlReaderCatchesStandardExceptionsOfItsParts)
{
    const SourceFile source(binaryStl(twoTriangles()));
    for (const std::size_t bytes : {sizeof(OffscreenRenderer), sizeof(StlMesh)}) {
        restartLog();
        const FailingAllocation failing(bytes, Thrown::BadAlloc);
        StlFileThumbnail reader(source.path());
        EXPECT_EQ(logMessages(), QStringList({"16 err init"}));
        expectNoPicture(reader);
        EXPECT_EQ(logMessages().size(), 1);
    }
}

TEST_F(ReaderFailureTest, StlReaderLetsErrorKeysOfItsPartsPass)
{
    const FailingAllocation failing(sizeof(OffscreenRenderer), Thrown::ErrorKey);
    EXPECT_THROW(StlFileThumbnail("model.stl"), QString);
    EXPECT_EQ(logMessages(), QStringList());
}

// Readers of the other kind: with these lines before the renderer fails, and this one after it.
template <typename Reader>
void expectCaughtKey(const QStringList& log)
{
    restartLog();
    const FailingAllocation failing(sizeof(OffscreenRenderer), Thrown::ErrorKey);
    Reader reader(QStringLiteral("model"));
    EXPECT_EQ(logMessages(), log);
    expectNoPicture(reader);
    EXPECT_EQ(logMessages(), log);
}

TEST_F(ReaderFailureTest, OtherReadersCatchErrorKeysOfTheirParts)
{
    expectCaughtKey<ObjFileThumbnail>({"12 ", "18 "});
    expectCaughtKey<SlcFileThumbnail>({"11 ", "17 "});
}

TEST_F(ReaderFailureTest, OtherReadersLetStandardExceptionsOfTheirPartsPass)
{
    {
        const FailingAllocation failing(sizeof(OffscreenRenderer), Thrown::BadAlloc);
        EXPECT_THROW(ObjFileThumbnail("model.obj"), std::bad_alloc);
    }
    {
        const FailingAllocation failing(sizeof(OffscreenRenderer), Thrown::BadAlloc);
        EXPECT_THROW(SlcFileThumbnail("model.slc"), std::bad_alloc);
    }
    EXPECT_EQ(logMessages(), QStringList({"12 ", "11 "}));
}

TEST_F(ReaderFailureTest, ErrorKeyOfTheStlReadersPartsEndsTheJob)
{
    const SourceFile source(binaryStl(twoTriangles()), "model.stl");
    ThumbnailJob job(source.path());
    const FailingAllocation failing(sizeof(OffscreenRenderer), Thrown::ErrorKey);
    EXPECT_FALSE(job.run());
    EXPECT_EQ(logMessages(), QStringList({"84  throw ", "73 getImage False"}));
}

} // namespace
} // namespace zr::test
