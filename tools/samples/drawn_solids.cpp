// SPDX-License-Identifier: MIT
#include "tools/samples/drawn_solids.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace zr::samples
{
namespace
{

// A point of the outline, in units of the picture's shorter side: 0 is the top.
struct OutlinePoint {
    double y, radius;
};

// A gap in the outline, such as between a rook's battlements.
struct Notch {
    double bottom, left, right;
};

struct SolidShape {
    QRgb colour;
    QRgb background;
    std::vector<OutlinePoint> outline;
    std::vector<Notch> notches;
};

const SolidShape& shapeOf(Solid solid)
{
    static const SolidShape shapes[] = {
        {qRgb(232, 92, 60),
         qRgb(24, 40, 56),
         {{0.08, 0.24},
          {0.26, 0.24},
          {0.30, 0.17},
          {0.68, 0.20},
          {0.74, 0.27},
          {0.82, 0.28},
          {0.84, 0.33},
          {0.92, 0.33}},
         {{0.17, -0.14, -0.06}, {0.17, 0.06, 0.14}}},
        {qRgb(70, 150, 235),
         qRgb(240, 236, 224),
         {{0.06, 0.17},
          {0.09, 0.19},
          {0.20, 0.10},
          {0.28, 0.13},
          {0.45, 0.28},
          {0.60, 0.30},
          {0.80, 0.20},
          {0.94, 0.17}},
         {}},
        {qRgb(248, 214, 120),
         qRgb(50, 24, 60),
         {{0.10, 0.00},
          {0.12, 0.07},
          {0.18, 0.13},
          {0.25, 0.15},
          {0.32, 0.13},
          {0.38, 0.08},
          {0.40, 0.17},
          {0.43, 0.17},
          {0.45, 0.09},
          {0.70, 0.16},
          {0.78, 0.26},
          {0.80, 0.30},
          {0.90, 0.31}},
         {}},
        {qRgb(90, 220, 150),
         qRgb(30, 30, 30),
         {{0.08, 0.24},
          {0.24, 0.25},
          {0.38, 0.20},
          {0.46, 0.07},
          {0.50, 0.05},
          {0.72, 0.04},
          {0.84, 0.08},
          {0.88, 0.22},
          {0.92, 0.23}},
         {}},
        {qRgb(40, 190, 170),
         qRgb(250, 244, 250),
         {{0.04, 0.09},
          {0.10, 0.09},
          {0.11, 0.07},
          {0.30, 0.08},
          {0.42, 0.20},
          {0.48, 0.23},
          {0.90, 0.23},
          {0.95, 0.20}},
         {}},
        {qRgb(214, 80, 190),
         qRgb(226, 240, 214),
         {{0.06, 0.03},
          {0.30, 0.03},
          {0.34, 0.10},
          {0.44, 0.30},
          {0.50, 0.37},
          {0.56, 0.36},
          {0.74, 0.16},
          {0.90, 0.04},
          {0.96, 0.00}},
         {}},
    };
    return shapes[static_cast<int>(solid)];
}

// The surface at one height.
struct Slice {
    double radius, slope;
};

std::optional<Slice> sliceAt(const SolidShape& shape, double y)
{
    for (std::size_t i = 1; i < shape.outline.size(); ++i) {
        const OutlinePoint& above = shape.outline[i - 1];
        const OutlinePoint& below = shape.outline[i];
        if (y < above.y || y >= below.y)
            continue;
        const double slope = (below.radius - above.radius) / (below.y - above.y);
        return Slice{above.radius + slope * (y - above.y), slope};
    }
    return std::nullopt;
}

bool isInNotch(const SolidShape& shape, double x, double y)
{
    return std::any_of(shape.notches.begin(), shape.notches.end(),
                       [x, y](const Notch& notch) { return y < notch.bottom && x > notch.left && x < notch.right; });
}

// Brightness of a surface point at `x` radii from the axis. A surface that widens downwards looks up, towards the
// light.
double brightness(double x, double slope)
{
    const double z = std::sqrt(std::max(0.0, 1.0 - x * x));
    const double towardsLight = (-0.55 * x + 0.3 * slope + 0.67 * z) / std::sqrt(1.0 + slope * slope);
    return 0.28 + 0.85 * std::max(0.0, towardsLight);
}

QRgb lit(QRgb colour, double light)
{
    const auto channel = [light](int value) { return std::min(255, static_cast<int>(value * light)); };
    return qRgb(channel(qRed(colour)), channel(qGreen(colour)), channel(qBlue(colour)));
}

QRgb colourAt(const SolidShape& shape, double x, double y)
{
    const auto slice = sliceAt(shape, y);
    if (!slice || x * x >= slice->radius * slice->radius || isInNotch(shape, x, y))
        return shape.background;
    return lit(shape.colour, brightness(x / slice->radius, slice->slope));
}

} // namespace

QImage drawSolid(Solid solid, int width, int height)
{
    const SolidShape& shape = shapeOf(solid);
    const double unit = std::min(width, height);
    QImage picture(width, height, QImage::Format_RGB32);
    for (int row = 0; row < height; ++row) {
        auto* const line = reinterpret_cast<QRgb*>(picture.scanLine(row));
        const double y = (row + 0.5 - height / 2.0) / unit + 0.5;
        for (int column = 0; column < width; ++column)
            line[column] = colourAt(shape, (column + 0.5 - width / 2.0) / unit, y);
    }
    return picture;
}

} // namespace zr::samples
