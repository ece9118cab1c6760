// SPDX-License-Identifier: MIT
#include "readers/slice/fdg_file_thumbnail.h"

#include "readers/slice/vrx_file_thumbnail.h"
#include "tests/readers/slice/slice_formats.h"
#include "tools/samples/drawn_solids.h"
#include "tools/samples/fdg_bytes.h"
#include "tools/samples/vrx_bytes.h"

namespace zr::test
{
namespace
{

using FdgFileThumbnailTest = SliceReaderTest;

TEST_F(FdgFileThumbnailTest, SamePreviewAsInAVrxFileGivesTheSamePicture)
{
    samples::FdgParts fdg;
    samples::VrxParts vrx;
    fdg.preview = vrx.preview = samples::runLengthPreview(samples::drawSolid(samples::Solid::Rook, 123, 77));
    EXPECT_EQ(pictureOf<FdgFileThumbnail>(samples::fdgBytes(fdg)), pictureOf<VrxFileThumbnail>(samples::vrxBytes(vrx)));
}

TEST_F(FdgFileThumbnailTest, HeaderAloneWithItsSecondOffsetInsideItLacksThePreviewHeader)
{
    constexpr int kHeadBytes = 216;
    samples::FdgParts parts;
    parts.secondHeadOffset = kHeadBytes - 1;
    expectFailure(make<FdgFileThumbnail>, samples::fdgBytes(parts).left(kHeadBytes),
                  {44, "DlpPreviewHead_t read less", "fileReadLess"});
}

} // namespace
} // namespace zr::test
