// SPDX-License-Identifier: MIT
#pragma once

#include "render/mesh_renderer.h"

#include <memory>

namespace zr
{

struct SoftwareSettings;

/// The renderer of one picture: an OffscreenRenderer, unless the program has chosen otherwise.
/// `perspective`: view from 30 degrees above, turned by 41.5 degrees; otherwise orthographic along +Y.
std::unique_ptr<MeshRenderer> makeMeshRenderer(bool perspective);

// Only on Linux there is a choice: the server always draws with OpenGL.

/// From now on renderers are SoftwareRenderers with these settings, all or, each time, where `isNeeded` says so. To be
/// called before the first request.
void drawInSoftware(const SoftwareSettings& settings, bool (*isNeeded)() = nullptr);

} // namespace zr
