// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/mesh_file_thumbnail.h"
#include "readers/mesh/stl_mesh.h"

namespace zr
{

/// Draws models in files with the suffix "stl", text or binary, in perspective. The picture is 400 x 400 with a
/// transparent background.
///
/// A file that cannot be parsed gives a null image, too, but through the renderer, which gets an empty mesh.
class StlFileThumbnail : public MeshFileThumbnail<StlMesh>
{
public:
    /// The failures that it logs.
    static FailureLines failures();

    /// A QString error key of the renderer passes through; a standard exception is only logged.
    explicit StlFileThumbnail(const QString& filePath);

    /// Keeps the mesh and the renderer for the life of the process.
    ~StlFileThumbnail() override;

    Q_DISABLE_COPY(StlFileThumbnail)

    QImage previewImage() override;
};

} // namespace zr
