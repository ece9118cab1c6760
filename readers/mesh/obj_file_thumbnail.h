// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/mesh_file_thumbnail.h"
#include "readers/mesh/obj_mesh.h"

namespace zr
{

/// Draws models in files with the suffix "obj" in perspective.
class ObjFileThumbnail : public LoggedMeshThumbnail<ObjMesh>
{
public:
    /// The failures that it logs.
    static FailureLines failures() { return failuresWith(kLines); }

    explicit ObjFileThumbnail(const QString& filePath) : LoggedMeshThumbnail(filePath, true, kLines, objReading()) {}

private:
    static constexpr MakingLines kLines{12, 14, 16, {18, "", FailureLine::Rest::None, reason::kOpenGlFailed}};
};

} // namespace zr
