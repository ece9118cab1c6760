// SPDX-License-Identifier: MIT
#pragma once

#include <QMatrix4x4>
#include <QSize>
#include <QVector3D>

namespace zr
{

/// Where the light is, in the model's own units and place.
constexpr QVector3D kLightPosition(-500.0F, 0.0F, 700.0F);

/// How a model is looked at. A vertex of the model is at mvpMatrix() * unitBoxMatrix() * vertex in OpenGL's clip space:
/// +Y is up in the picture, and z grows with the distance. All values are 32-bit floats in QMatrix4x4's arithmetic; who
/// draws without OpenGL uses them as they are, so that the pictures agree.
struct CameraMatrices {
    QMatrix4x4 projection;
    QMatrix4x4 rotation;
    QMatrix4x4 view;

    QMatrix4x4 mvpMatrix() const { return projection * view * rotation; }
    QMatrix3x3 normalMatrix() const { return rotation.normalMatrix(); }
};

/// The camera for a picture of this size in pixels. `perspective`: a view of 45 degrees in height from 30 degrees
/// above, turned by 41.5 degrees; otherwise orthographic along +Y with 200 pixels per unit, whatever the size. Clip
/// space has no pixels: the same picture at another resolution takes the same camera.
CameraMatrices cameraMatrices(const QSize& size, bool perspective);

/// Moves the centre of the bounding box to the origin and scales its maximum extent to 1. `min` and `max` are three
/// floats each. Without an extent, or with NaN or infinity in the box, the matrix is not finite.
QMatrix4x4 unitBoxMatrix(const float* min, const float* max);

} // namespace zr
