// SPDX-License-Identifier: MIT
#pragma once

#include "readers/slice/slice_file_thumbnail.h"

namespace zr
{

/// Reads the preview of resin slice files with the suffix "gf", whose pixels are stored one by one with three channels
/// of 16 bits. The picture is 400 x 400, QImage::Format_RGB888.
class GfFileThumbnail : public SliceFileThumbnail
{
public:
    using SliceFileThumbnail::SliceFileThumbnail;
    static FailureLines failures(); ///< the ones that it logs
    void readFile() override;
};

} // namespace zr
