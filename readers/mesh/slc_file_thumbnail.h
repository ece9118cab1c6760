// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/mesh_file_thumbnail.h"
#include "readers/mesh/slc_mesh.h"

namespace zr
{

/// Draws models in files with the suffix "slc", seen from the front without perspective.
class SlcFileThumbnail : public LoggedMeshThumbnail<SlcMesh>
{
public:
    /// The failures that it logs.
    static FailureLines failures() { return failuresWith(kLines); }

    explicit SlcFileThumbnail(const QString& filePath) : LoggedMeshThumbnail(filePath, false, kLines) {}

private:
    static constexpr MakingLines kLines{11, 13, 15, {17, "", FailureLine::Rest::None, reason::kOpenGlFailed}};
};

} // namespace zr
