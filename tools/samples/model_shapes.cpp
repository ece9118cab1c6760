// SPDX-License-Identifier: MIT
#include "tools/samples/model_shapes.h"

#include <algorithm>
#include <cmath>

namespace zr::samples
{
namespace
{

constexpr double kTurn = 6.283185307179586;

float rounded(double coordinate)
{
    return static_cast<float>(std::round(coordinate * 1024) / 1024);
}

ModelPoint point(double x, double y, double z)
{
    return {rounded(x), rounded(y), rounded(z)};
}

/// A closed outline at one height, anticlockwise.
using Ring = std::vector<ModelPoint>;

// The band between two rings of equally many points, seen from outside when `upper` is above.
void addBand(std::vector<ModelTriangle>& triangles, const Ring& lower, const Ring& upper)
{
    for (std::size_t i = 0; i < lower.size(); ++i) {
        const std::size_t next = (i + 1) % lower.size();
        triangles.push_back({lower[i], lower[next], upper[next]});
        triangles.push_back({lower[i], upper[next], upper[i]});
    }
}

// A ring of `count` points whose radius depends on the share of the turn.
template <typename Radius>
Ring ring(int count, double z, Radius radius)
{
    Ring points;
    for (int i = 0; i < count; ++i) {
        const double share = static_cast<double>(i) / count;
        const double r = radius(share);
        points.push_back(point(r * std::cos(share * kTurn), r * std::sin(share * kTurn), z));
    }
    return points;
}

} // namespace

std::vector<ModelTriangle> gear()
{
    constexpr int teeth = 18;
    constexpr int pointsPerTooth = 8;
    constexpr int count = teeth * pointsPerTooth;
    const auto tooth = [](double share) {
        const double place = share * teeth - std::floor(share * teeth);
        // Root, flank, tip, flank.
        const double height = std::min(std::max(std::abs(place - 0.5) * 6 - 0.75, 0.0), 1.0);
        return 26 - 5 * height;
    };
    const auto at = [](double radius) { return [radius](double) { return radius; }; };

    // Around the section: out along the bottom, up the teeth, in to the hub, up and in, and down the bore.
    const std::vector<Ring> rings = {ring(count, 0, at(6)),  ring(count, 0, tooth),   ring(count, 9, tooth),
                                     ring(count, 9, at(12)), ring(count, 16, at(12)), ring(count, 16, at(6)),
                                     ring(count, 0, at(6))};
    std::vector<ModelTriangle> triangles;
    for (std::size_t i = 0; i + 1 < rings.size(); ++i)
        addBand(triangles, rings[i], rings[i + 1]);
    return triangles;
}

std::vector<ModelTriangle> twistedVase()
{
    constexpr int count = 64;
    constexpr int steps = 28;
    constexpr double height = 80;
    const auto wall = [](double share, double rise, double inset) {
        const double belly = 17 + 8 * std::sin(rise * 5 + 0.3) + 3 * rise;
        return belly - inset + 1.8 * std::cos((share * 8 + rise * 1.2) * kTurn);
    };
    const auto ringAt = [&wall](double rise, double inset) {
        return ring(count, rise * height, [&wall, rise, inset](double share) { return wall(share, rise, inset); });
    };
    std::vector<ModelTriangle> triangles;
    addBand(triangles, ring(count, 0, [](double) { return 0.0; }), ringAt(0, 0));
    for (int i = 0; i < steps; ++i)
        addBand(triangles, ringAt(i / double{steps}, 0), ringAt((i + 1) / double{steps}, 0));
    addBand(triangles, ringAt(1, 0), ringAt(1, 1.6));
    for (int i = steps; i > 2; --i)
        addBand(triangles, ringAt(i / double{steps}, 1.6), ringAt((i - 1) / double{steps}, 1.6));
    const double floorHeight = 2.0 / steps;
    addBand(triangles, ringAt(floorHeight, 1.6), ring(count, floorHeight * height, [](double) { return 0.0; }));
    return triangles;
}

namespace
{

/// A round body along a bent axis: its middle and its radius at each share of its length.
struct Body {
    ModelPoint (*middle)(double share);
    double (*radius)(double share);
    /// The axis runs along x, or along z.
    bool isLying;
};

// Points go around the axis while they move along it, like a thread.
void addBody(IndexedModel& model, const Body& body)
{
    constexpr int around = 40;
    constexpr int turns = 40;
    constexpr int count = around * turns;
    const int first = static_cast<int>(model.points.size());
    // One more than is needed, for programs that take the next point of each corner.
    for (int i = 0; i <= count; ++i) {
        const double share = std::min(i / static_cast<double>(count - 1), 1.0);
        const double angle = kTurn * (i % around) / around;
        const ModelPoint m = body.middle(share);
        const double r = body.radius(share);
        const double c = r * std::cos(angle), s = r * std::sin(angle);
        model.points.push_back(body.isLying ? point(m[0], double{m[1]} + c, double{m[2]} + s)
                                            : point(double{m[0]} + c, double{m[1]} + s, m[2]));
    }
    for (int i = first; i + around + 1 < first + count; ++i) {
        model.triangles.push_back({i, i + 1, i + around + 1});
        model.triangles.push_back({i, i + around + 1, i + around});
    }
}

// Of a ball of radius 1, `share` of the way from pole to pole, with even steps of the angle.
double ballRadius(double share)
{
    return std::sin(share * kTurn / 2);
}

double ballPlace(double share)
{
    return -std::cos(share * kTurn / 2);
}

} // namespace

IndexedModel duck()
{
    IndexedModel model;
    // The trunk rises towards the tail, which is at -x.
    addBody(model, {[](double share) {
                        const double x = 30 * ballPlace(share);
                        const double lift = std::max(-x - 12, 0.0);
                        return ModelPoint{static_cast<float>(x), 0, static_cast<float>(20 + lift * lift / 20)};
                    },
                    [](double share) { return 20 * ballRadius(share) * (0.72 + 0.28 * share); }, true});
    // The head.
    addBody(model, {[](double share) {
                        return ModelPoint{16, 0, static_cast<float>(46 + 14 * ballPlace(share))};
                    },
                    [](double share) { return 14 * ballRadius(share); }, false});
    // The beak.
    addBody(model, {[](double share) {
                        return ModelPoint{static_cast<float>(26 + 16 * share), 0, static_cast<float>(44 - 2 * share)};
                    },
                    [](double share) { return 6.5 * std::sqrt(1 - share); }, true});
    return model;
}

namespace
{

ContourPoint onCircle(double radius, double share)
{
    return {rounded(radius * std::cos(share * kTurn)), rounded(radius * std::sin(share * kTurn))};
}

std::vector<ContourPoint> circle(double radius, bool anticlockwise)
{
    constexpr int steps = 96;
    std::vector<ContourPoint> points;
    points.reserve(steps + 1);
    for (int i = 0; i <= steps; ++i)
        points.push_back(onCircle(radius, (anticlockwise ? i : steps - i) / double{steps}));
    return points;
}

// A piece of a wall between two radii, from one share of the turn to another.
std::vector<ContourPoint> wallPiece(double inner, double outer, double from, double to)
{
    const int steps = std::max(static_cast<int>((to - from) * 96), 2);
    std::vector<ContourPoint> points;
    for (int i = 0; i <= steps; ++i)
        points.push_back(onCircle(outer, from + (to - from) * i / steps));
    for (int i = steps; i >= 0; --i)
        points.push_back(onCircle(inner, from + (to - from) * i / steps));
    points.push_back(points.front());
    return points;
}

/// An opening in the tower's wall: its middle and half its width as shares of the turn.
struct Opening {
    double middle;
    double halfWidth;
};

std::vector<Opening> openingsAt(double z)
{
    constexpr double front = 0.75;
    if (z < 22) {
        // A round arch above 14.
        const double arch = std::max(z - 14, 0.0) / 8;
        return {{front, 0.055 * std::sqrt(1 - arch * arch)}};
    }
    if (z >= 34 && z < 44)
        return {{front - 0.09, 0.022}, {front + 0.09, 0.022}};
    if (z >= 62) {
        std::vector<Opening> gaps;
        gaps.reserve(10);
        for (int i = 0; i < 10; ++i)
            gaps.push_back({(i + 0.5) / 10, 0.022});
        return gaps;
    }
    return {};
}

ContourLayer towerLayer(double z)
{
    const double outer = z < 6 ? 26 - z / 3 : z < 52 ? 24 - z / 20 : std::min(21.4 + (z - 52) * 0.7, 26.0);
    const double inner = outer - 4;
    ContourLayer layer{static_cast<float>(z), {}};
    const std::vector<Opening> openings = openingsAt(z);
    if (openings.empty()) {
        layer.contours = {circle(outer, true), circle(inner, false)};
        return layer;
    }
    for (std::size_t i = 0; i < openings.size(); ++i) {
        const Opening& here = openings[i];
        const Opening& next = openings[(i + 1) % openings.size()];
        const double turn = i + 1 == openings.size() ? 1 : 0;
        layer.contours.push_back(
            wallPiece(inner, outer, here.middle + here.halfWidth, next.middle - next.halfWidth + turn));
    }
    return layer;
}

} // namespace

std::vector<ContourLayer> tower()
{
    constexpr int layers = 140;
    std::vector<ContourLayer> tower;
    tower.reserve(layers);
    for (int i = 0; i < layers; ++i)
        tower.push_back(towerLayer(i * double{kTowerLayer}));
    return tower;
}

} // namespace zr::samples
