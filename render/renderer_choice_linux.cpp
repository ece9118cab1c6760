// SPDX-License-Identifier: MIT
#include "render/renderer_choice.h"

#include "render/offscreen_renderer.h"
#include "render/software_renderer.h"

namespace zr
{
namespace
{

bool never()
{
    return false;
}

bool always()
{
    return true;
}

struct {
    SoftwareSettings settings;
    bool (*isSoftware)() = never;
} choice;

} // namespace

std::unique_ptr<MeshRenderer> makeMeshRenderer(bool perspective)
{
    if (choice.isSoftware())
        return std::make_unique<SoftwareRenderer>(perspective, choice.settings);
    return std::make_unique<OffscreenRenderer>(perspective);
}

void drawInSoftware(const SoftwareSettings& settings, bool (*isNeeded)())
{
    choice = {settings, isNeeded ? isNeeded : always};
}

} // namespace zr
