// SPDX-License-Identifier: MIT
#include "tests/support/software_rasteriser.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kSidePx = 400;
constexpr std::size_t kPixelCount = std::size_t{kSidePx} * kSidePx;
constexpr double kPi = 3.14159265358979323846;
constexpr QRgb kBackground = 0x00FFFFFF;

struct Vec3 {
    double x, y, z;
};

Vec3 operator+(const Vec3& a, const Vec3& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vec3 operator-(const Vec3& a, const Vec3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Vec3 operator*(const Vec3& a, double factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}

double dot(const Vec3& a, const Vec3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec3 cross(const Vec3& a, const Vec3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vec3 normalised(const Vec3& a)
{
    return a * (1.0 / std::sqrt(dot(a, a)));
}

Vec3 turnedAboutX(const Vec3& a, double degrees)
{
    const double c = std::cos(degrees * kPi / 180.0);
    const double s = std::sin(degrees * kPi / 180.0);
    return {a.x, c * a.y - s * a.z, s * a.y + c * a.z};
}

Vec3 turnedAboutZ(const Vec3& a, double degrees)
{
    const double c = std::cos(degrees * kPi / 180.0);
    const double s = std::sin(degrees * kPi / 180.0);
    return {c * a.x - s * a.y, s * a.x + c * a.y, a.z};
}

/// Rotates a direction or position of the unit box so that the eye looks along -z.
Vec3 turnedToEye(const Vec3& a, Camera camera)
{
    return camera == Camera::Perspective ? turnedAboutX(turnedAboutZ(a, 41.5), -60.0) : turnedAboutX(a, -90.0);
}

/// A projected corner: pixels from the bottom left, depth, and 1/w for the perspective.
struct ScreenVertex {
    double x, y, depth, inverseW;
    Vec3 model;
    Vec3 normal;
    bool isVisible;
};

class Projector
{
public:
    Projector(const float* min, const float* max, Camera camera) : m_camera(camera)
    {
        const Vec3 low = {min[0], min[1], min[2]};
        const Vec3 high = {max[0], max[1], max[2]};
        m_centre = (low + high) * 0.5;
        const Vec3 extent = high - low;
        m_scale = 1.0 / std::max({extent.x, extent.y, extent.z});
    }

    ScreenVertex project(const Vec3& model, const Vec3& normal) const
    {
        Vec3 eye = turnedToEye((model - m_centre) * m_scale, m_camera);
        eye.z -= 2.3;
        ScreenVertex v = {};
        v.model = model;
        v.normal = turnedToEye(normal, m_camera);
        if (m_camera == Camera::Perspective) {
            const double zoom = 1.0 / std::tan(45.0 * kPi / 360.0);
            const double nearPlane = 0.01;
            const double farPlane = 1000.0;
            v.inverseW = -1.0 / eye.z;
            v.x = toPixels(eye.x * zoom * v.inverseW);
            v.y = toPixels(eye.y * zoom * v.inverseW);
            v.depth =
                ((farPlane + nearPlane) * eye.z + 2.0 * farPlane * nearPlane) / (nearPlane - farPlane) * v.inverseW;
        } else {
            // 200 units of the projection's scale on a screen that is 400 units wide.
            v.inverseW = 1.0;
            v.x = toPixels(eye.x);
            v.y = toPixels(eye.y);
            v.depth = -eye.z;
        }
        v.isVisible = std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.depth) && v.inverseW > 0.0;
        return v;
    }

private:
    /// In steps of 1/256 pixel, as in OpenGL drivers: they decide which pixel centres are on an edge.
    static double toPixels(double device) { return std::round((device + 1.0) * kSidePx / 2.0 * 256.0) / 256.0; }

    Camera m_camera;
    Vec3 m_centre = {};
    double m_scale = 1.0;
};

QRgb shade(const Vec3& model, const Vec3& normal)
{
    const Vec3 light = normalised(Vec3{-500.0, 0.0, 700.0} - model);
    const double lambert = std::max(dot(normalised(normal), light), 0.0);
    double specular = 0.0;
    if (dot(normal, light) >= 0.0) {
        const Vec3 reflected = normal * (2.0 * dot(normal, light)) - light;
        specular = 0.2 * std::pow(std::max(0.0, dot(reflected, light)), 10.0);
    }
    const auto channel = [&](double base) {
        const double diffuse = std::clamp(base / 255.0 * (0.3 + 0.7 * lambert), 0.0, 1.0);
        return static_cast<int>(std::lround(std::min(diffuse + specular, 1.0) * 255.0));
    };
    return qRgb(channel(40.0), channel(164.0), channel(230.0));
}

class Canvas
{
public:
    Canvas()
        : m_image(kSidePx, kSidePx, QImage::Format_ARGB32_Premultiplied),
          m_depths(kPixelCount, std::numeric_limits<double>::infinity())
    {
        m_image.fill(kBackground);
    }

    void fillTriangle(const std::array<ScreenVertex, 3>& v)
    {
        // Anticlockwise is the front; the back is culled.
        const double area = edge(v[0], v[1], v[2].x, v[2].y);
        const bool isVisible = v[0].isVisible && v[1].isVisible && v[2].isVisible;
        if (!isVisible || !(area > 0.0))
            return;
        const auto [left, right] = std::minmax({v[0].x, v[1].x, v[2].x});
        const auto [bottom, top] = std::minmax({v[0].y, v[1].y, v[2].y});
        const int lastX = clampToScreen(right);
        const int lastY = clampToScreen(top);
        for (int y = clampToScreen(bottom); y <= lastY; ++y) {
            for (int x = clampToScreen(left); x <= lastX; ++x) {
                const double px = x + 0.5;
                const double py = y + 0.5;
                const std::array<double, 3> inside = {edge(v[1], v[2], px, py), edge(v[2], v[0], px, py),
                                                      edge(v[0], v[1], px, py)};
                if (covers(inside[0], v[1], v[2]) && covers(inside[1], v[2], v[0]) && covers(inside[2], v[0], v[1]))
                    fillPixel(x, y, v, {inside[0] / area, inside[1] / area, inside[2] / area});
            }
        }
    }

    QImage image() const { return m_image; }

private:
    /// Twice the area of the triangle a, b, (x, y); positive when it is anticlockwise.
    static double edge(const ScreenVertex& a, const ScreenVertex& b, double x, double y)
    {
        return (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x);
    }

    /// A pixel centre on an edge belongs to the triangle on its right, or above it.
    static bool covers(double inside, const ScreenVertex& a, const ScreenVertex& b)
    {
        const bool isLeftOrBottom = b.y < a.y || (b.y == a.y && b.x > a.x);
        return inside > 0.0 || (inside == 0.0 && isLeftOrBottom);
    }

    static int clampToScreen(double pixel) { return static_cast<int>(std::clamp(pixel, 0.0, kSidePx - 1.0)); }

    void fillPixel(int x, int y, const std::array<ScreenVertex, 3>& v, const std::array<double, 3>& weights)
    {
        double& nearest = m_depths[static_cast<std::size_t>(y) * kSidePx + static_cast<std::size_t>(x)];
        const double depth = weights[0] * v[0].depth + weights[1] * v[1].depth + weights[2] * v[2].depth;
        if (depth >= nearest)
            return;
        nearest = depth;
        double sum = 0.0;
        Vec3 model = {0.0, 0.0, 0.0};
        Vec3 normal = {0.0, 0.0, 0.0};
        for (std::size_t i = 0; i < 3; ++i) {
            const double weight = weights[i] * v[i].inverseW;
            sum += weight;
            model = model + v[i].model * weight;
            normal = normal + v[i].normal * weight;
        }
        auto* line = reinterpret_cast<QRgb*>(m_image.scanLine(kSidePx - 1 - y));
        line[x] = shade(model * (1.0 / sum), normal * (1.0 / sum));
    }

    QImage m_image;
    std::vector<double> m_depths;
};

void rasteriseChunk(const QVector<float>& chunk, const Projector& projector, VertexRecord record, Canvas& canvas)
{
    const int floatsPerVertex = record == VertexRecord::PositionAndNormal ? 6 : 3;
    const int triangleCount = chunk.size() / floatsPerVertex / 3;
    const auto vectorAt = [&chunk](int index) {
        return Vec3{chunk.at(index), chunk.at(index + 1), chunk.at(index + 2)};
    };
    for (int triangle = 0; triangle < triangleCount; ++triangle) {
        const int first = triangle * 3 * floatsPerVertex;
        const int second = first + floatsPerVertex;
        const int third = second + floatsPerVertex;
        const Vec3 corners[3] = {vectorAt(first), vectorAt(second), vectorAt(third)};
        Vec3 normals[3];
        if (record == VertexRecord::PositionAndNormal) {
            normals[0] = vectorAt(first + 3);
            normals[1] = vectorAt(second + 3);
            normals[2] = vectorAt(third + 3);
        } else {
            const Vec3 flat = normalised(cross(corners[1] - corners[0], corners[2] - corners[1]));
            normals[0] = normals[1] = normals[2] = flat;
        }
        canvas.fillTriangle({projector.project(corners[0], normals[0]), projector.project(corners[1], normals[1]),
                             projector.project(corners[2], normals[2])});
    }
}

/// The difference of two pixels: the max difference of a channel, 255 if only one shows the mesh.
int distance(QRgb a, QRgb b)
{
    if (qAlpha(a) == 0 && qAlpha(b) == 0)
        return 0;
    if (qAlpha(a) != qAlpha(b))
        return 255;
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

/// Whether an edge of the expected picture within a pixel of (x, y) explains the colour. At the silhouette any colour
/// of the mesh is accepted, since the sliver of a face seen edge-on need not be among the neighbours; between faces it
/// must be that of a neighbour.
bool isEdgePixel(QRgb colour, const QImage& expected, int x, int y)
{
    constexpr int kTolerance = 2;
    bool isNeighboursColour = false;
    int meshNeighbours = 0;
    int backgroundNeighbours = 0;
    for (int ny = std::max(y - 1, 0); ny <= std::min(y + 1, expected.height() - 1); ++ny) {
        for (int nx = std::max(x - 1, 0); nx <= std::min(x + 1, expected.width() - 1); ++nx) {
            const QRgb neighbour = expected.pixel(nx, ny);
            ++(qAlpha(neighbour) == 0 ? backgroundNeighbours : meshNeighbours);
            isNeighboursColour = isNeighboursColour || distance(colour, neighbour) <= kTolerance;
        }
    }
    return isNeighboursColour || (meshNeighbours > 0 && backgroundNeighbours > 0);
}

} // namespace

QImage rasterise(const TriangleChunks& chunks, const float* min, const float* max, Camera camera, VertexRecord record)
{
    const Projector projector(min, max, camera);
    Canvas canvas;
    for (const QVector<float>* chunk : chunks)
        rasteriseChunk(*chunk, projector, record, canvas);
    return canvas.image();
}

void expectSamePicture(const QImage& actual, const QImage& expected)
{
    ASSERT_FALSE(actual.isNull());
    ASSERT_EQ(actual.size(), expected.size());
    const QImage left = actual.convertToFormat(QImage::Format_ARGB32);
    const QImage right = expected.convertToFormat(QImage::Format_ARGB32);
    constexpr int kTolerance = 2;
    int edgePixels = 0;
    int wrongPixels = 0;
    for (int y = 0; y < right.height(); ++y) {
        for (int x = 0; x < right.width(); ++x) {
            const QRgb colour = left.pixel(x, y);
            if (distance(colour, right.pixel(x, y)) <= kTolerance)
                continue;
            if (isEdgePixel(colour, right, x, y)) {
                ++edgePixels;
                continue;
            }
            if (++wrongPixels <= 5)
                ADD_FAILURE() << "pixel (" << x << ", " << y << ") is " << std::hex << colour << " instead of "
                              << right.pixel(x, y);
        }
    }
    EXPECT_EQ(wrongPixels, 0);
    // Rounding moves an edge by a fraction of a pixel, so only few pixel centres change sides.
    EXPECT_LE(edgePixels, 20 + meshPixelCount(right) / 500);
}

int meshPixelCount(const QImage& picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            count += qAlpha(picture.pixel(x, y)) == 255 ? 1 : 0;
    return count;
}

} // namespace zr::test
