// SPDX-License-Identifier: MIT
#include "render/renderer_choice.h"

#include "render/offscreen_renderer.h"

namespace zr
{

std::unique_ptr<MeshRenderer> makeMeshRenderer(bool perspective)
{
    return std::make_unique<OffscreenRenderer>(perspective);
}

} // namespace zr
