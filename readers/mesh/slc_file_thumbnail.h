#pragma once

#include "readers/mesh/mesh_file_thumbnail.h"
#include "readers/mesh/slc_mesh.h"

namespace zr
{

/// Draws the contours in files with the suffix "slc" as walls without floors, orthographically from the front. The
/// picture is 400 x 400 with a transparent background; a null image when the file cannot be read.
class SlcFileThumbnail : public MeshFileThumbnail<SlcMesh>
{
public:
    /// The failures that it logs.
    static FailureLines failures();

    explicit SlcFileThumbnail(const QString& filePath);

    QImage previewImage() override;
};

} // namespace zr
