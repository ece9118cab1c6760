// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <vector>

namespace zr::samples
{

using ModelPoint = std::array<float, 3>;

/// Corners anticlockwise seen from outside.
using ModelTriangle = std::array<ModelPoint, 3>;

// Shapes in millimetres that stand on z = 0. Coordinates are multiples of 1/1024, so that they are the same on every
// machine whatever its sine.

/// A spur gear with a hub and a bore.
std::vector<ModelTriangle> gear();

/// A vase with a wavy section that turns as it rises; hollow.
std::vector<ModelTriangle> twistedVase();

/// Points and triangles that refer to them, counted from 0.
struct IndexedModel {
    std::vector<ModelPoint> points;
    std::vector<std::array<int, 3>> triangles;
};

/// A bath duck that looks to +x. Its points wind around each part without a break, so that triangles which use the next
/// point of each corner show the same duck: programs that count points from 0 and from 1 agree on it.
IndexedModel duck();

using ContourPoint = std::array<float, 2>;

/// The closed outlines of one layer: anticlockwise around material, clockwise around a hole; first point repeated.
struct ContourLayer {
    float z;
    std::vector<std::vector<ContourPoint>> contours;
};

/// The distance between two layers of tower().
constexpr float kTowerLayer = 0.5F;

/// A round hollow tower with a door towards -y, windows and battlements.
std::vector<ContourLayer> tower();

} // namespace zr::samples
