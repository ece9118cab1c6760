// SPDX-License-Identifier: MIT
#pragma once

#include "readers/slice/slice_file_thumbnail.h"

namespace zr
{

/// Reads the preview of resin slice files with the suffix "fdg". The picture is 400 x 400, QImage::Format_RGB888.
class FdgFileThumbnail : public SliceFileThumbnail
{
public:
    using SliceFileThumbnail::SliceFileThumbnail;
    static FailureLines failures(); ///< the ones that it logs
    void readFile() override;
};

} // namespace zr
