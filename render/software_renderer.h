// SPDX-License-Identifier: MIT
#pragma once

#include "render/mesh_renderer.h"

namespace zr
{

/// How SoftwareRenderer draws.
struct SoftwareSettings {
    int sidePx = 400;      ///< kMinSidePx to kMaxSidePx
    int samples = 1;       ///< per pixel: 1, 2, 4, 8 or 16
    bool isFramed = false; ///< what is seen fills the picture, but for a margin; else as OffscreenRenderer places it

    static constexpr int kMinSidePx = 16;
    static constexpr int kMaxSidePx = 4096;

    /// A framed picture with smooth edges.
    static SoftwareSettings smooth(int sidePx);
};

/// Draws without OpenGL, a display, an application object or threads. With the default settings the picture is that of
/// OffscreenRenderer; with any, it is the same to the byte on all machines.
///
/// The background is white with alpha 0 in pictures of one sample per pixel. With more of them, pixels at the edges
/// have the share of their samples as alpha, and the colours are premultiplied.
class SoftwareRenderer final : public MeshRenderer
{
public:
    /// `perspective`: as in OffscreenRenderer. Throws std::invalid_argument for settings that are not possible.
    explicit SoftwareRenderer(bool perspective, const SoftwareSettings& settings = {});

    ChunkLayout chunkLayout() const override { return ChunkLayout::WholeTriangles; }

    bool hasContext() const override { return false; }

    /// A triangle with a corner that is not finite is left out, and so is what lies behind the eye or outside the
    /// picture.
    QImage render(const TriangleChunks& chunks, const float* min, const float* max) override;

private:
    QImage draw(const TriangleChunks& chunks, const float* min, const float* max) const;

    bool m_perspective;
    SoftwareSettings m_settings;
};

} // namespace zr
