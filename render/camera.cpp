// SPDX-License-Identifier: MIT
#include "render/camera.h"

namespace zr
{
namespace
{

constexpr float kDistance = 2.3F;
constexpr float kPixelsPerUnit = 200.0F;
constexpr float kFarPlane = 1000.0F;

/// All three turns stay, those by zero degrees too, so that both cameras are given by the same angles.
QMatrix4x4 rotationMatrix(float tilt, float roll, float turn)
{
    QMatrix4x4 matrix;
    matrix.rotate(tilt, 1.0F, 0.0F, 0.0F);
    matrix.rotate(roll, 0.0F, 1.0F, 0.0F);
    matrix.rotate(turn, 0.0F, 0.0F, 1.0F);
    return matrix;
}

} // namespace

CameraMatrices cameraMatrices(const QSize& size, bool perspective)
{
    const auto width = static_cast<float>(size.width());
    const auto height = static_cast<float>(size.height());
    CameraMatrices camera;
    if (perspective) {
        camera.projection.perspective(45.0F, width / height, 0.01F, kFarPlane);
        camera.rotation = rotationMatrix(-60.0F, 0.0F, 41.5F);
    } else {
        camera.projection.ortho(-width * 0.5F, width * 0.5F, -height * 0.5F, height * 0.5F, -100.0F, kFarPlane);
        camera.projection.scale(kPixelsPerUnit, kPixelsPerUnit, kPixelsPerUnit);
        camera.rotation = rotationMatrix(-90.0F, 0.0F, 0.0F);
    }
    camera.view.translate(0.0F, 0.0F, -kDistance);
    return camera;
}

QMatrix4x4 unitBoxMatrix(const float* min, const float* max)
{
    const float dx = max[0] - min[0];
    const float dy = max[1] - min[1];
    const float dz = max[2] - min[2];
    const float maxOfYz = dz > dy ? dz : dy;
    const float maxExtent = maxOfYz > dx ? maxOfYz : dx;

    QMatrix4x4 matrix;
    matrix.scale(static_cast<float>(1.0 / static_cast<double>(maxExtent)));
    matrix.translate(-(min[0] + max[0]) * 0.5F, -(min[1] + max[1]) * 0.5F, -(min[2] + max[2]) * 0.5F);
    return matrix;
}

} // namespace zr
