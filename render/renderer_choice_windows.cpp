// SPDX-License-Identifier: MIT
#include "render/offscreen_renderer.h"
#include "render/renderer_choice.h"

namespace zr
{

std::unique_ptr<MeshRenderer> makeMeshRenderer(bool perspective)
{
    return std::make_unique<OffscreenRenderer>(perspective);
}

} // namespace zr
