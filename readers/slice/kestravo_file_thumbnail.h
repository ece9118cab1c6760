// SPDX-License-Identifier: MIT
#pragma once

#include "readers/slice/slice_file_thumbnail.h"

namespace zr
{

/// Reads the preview of project files with the suffix "kestravo". The picture is a square of at least 400 x 400,
/// QImage::Format_RGB888, in the light scheme; larger previews are not scaled down.
class KestravoFileThumbnail : public SliceFileThumbnail
{
public:
    using SliceFileThumbnail::SliceFileThumbnail;
    static FailureLines failures(); ///< the ones that it logs
    void readFile() override;
};

} // namespace zr
