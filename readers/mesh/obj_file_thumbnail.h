#pragma once

#include "readers/mesh/mesh_file_thumbnail.h"
#include "readers/mesh/obj_mesh.h"

namespace zr
{

/// Draws models in files with the suffix "obj" in perspective. The picture is 400 x 400
/// with a transparent background; a null image when the file cannot be read.
class ObjFileThumbnail : public MeshFileThumbnail<ObjMesh>
{
public:
    /// The failures that it logs.
    static FailureLines failures();

    explicit ObjFileThumbnail(const QString& filePath);

    QImage previewImage() override;
};

} // namespace zr
