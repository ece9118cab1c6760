// SPDX-License-Identifier: MIT
#pragma once

#include "render/triangle_chunks.h"

#include <QImage>

namespace zr
{

/// Draws a triangle stream into a square picture. Each mesh reader makes one for its single picture.
class MeshRenderer
{
public:
    virtual ~MeshRenderer() = default;

    /// What the chunks for this renderer must hold.
    virtual ChunkLayout chunkLayout() const = 0;

    /// The picture of the chunks, whose bounding box has the corners `min` and `max` (three floats each, in the mesh's
    /// own units); a null image after a failure, which is logged. Throws no error key. The background has alpha 0.
    virtual QImage render(const TriangleChunks& chunks, const float* min, const float* max) = 0;

    /// Whether it has made an OpenGL context, which is current on this thread until another one is made or it is
    /// destroyed.
    virtual bool hasContext() const = 0;

protected:
    MeshRenderer() = default;
    Q_DISABLE_COPY(MeshRenderer)
};

} // namespace zr
