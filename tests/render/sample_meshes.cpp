// SPDX-License-Identifier: MIT
#include "tests/render/sample_meshes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace zr::test
{
namespace
{

constexpr double kPi = 3.14159265358979323846;

// In double precision, since QVector3D::normalized() takes short vectors for null ones.
QVector3D flatNormal(const QVector3D& a, const QVector3D& b, const QVector3D& c)
{
    const std::array<double, 3> u = {double(b.x()) - a.x(), double(b.y()) - a.y(), double(b.z()) - a.z()};
    const std::array<double, 3> v = {double(c.x()) - b.x(), double(c.y()) - b.y(), double(c.z()) - b.z()};
    const std::array<double, 3> n = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
    const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (length == 0.0)
        return {};
    return {static_cast<float>(n[0] / length), static_cast<float>(n[1] / length), static_cast<float>(n[2] / length)};
}

} // namespace

SampleMesh::SampleMesh(VertexRecord record) : m_record(record)
{
    m_min.fill(std::numeric_limits<float>::max());
    m_max.fill(std::numeric_limits<float>::lowest());
    startChunk();
}

void SampleMesh::addTriangle(const QVector3D& a, const QVector3D& b, const QVector3D& c)
{
    const QVector3D& second = m_isInward ? c : b;
    const QVector3D& third = m_isInward ? b : c;
    const QVector3D normal = flatNormal(a, second, third);
    addVertex(a, normal);
    addVertex(second, normal);
    addVertex(third, normal);
}

void SampleMesh::addOutside(const QVector3D& a, const QVector3D& b, const QVector3D& c)
{
    const auto min = m_min, max = m_max;
    addTriangle(a, b, c);
    m_min = min;
    m_max = max;
}

void SampleMesh::startChunk()
{
    m_chunks.push_back(std::make_unique<QVector<float>>());
}

void SampleMesh::turnInward()
{
    m_isInward = true;
}

void SampleMesh::addBox(const QVector3D& low, const QVector3D& high)
{
    const auto corner = [&](int bits) {
        return QVector3D((bits & 1) ? high.x() : low.x(), (bits & 2) ? high.y() : low.y(),
                         (bits & 4) ? high.z() : low.z());
    };
    // Each face anticlockwise seen from outside: bottom, top, front, back, left, right.
    const int faces[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& face : faces) {
        addTriangle(corner(face[0]), corner(face[1]), corner(face[2]));
        addTriangle(corner(face[0]), corner(face[2]), corner(face[3]));
    }
}

void SampleMesh::addSphere(const QVector3D& centre, float radius, int steps)
{
    const auto point = [&](int ring, int sector) {
        const double polar = kPi * ring / steps;
        const double azimuth = 2.0 * kPi * (sector % (2 * steps)) / (2 * steps);
        return centre + radius * QVector3D(static_cast<float>(std::sin(polar) * std::cos(azimuth)),
                                           static_cast<float>(std::sin(polar) * std::sin(azimuth)),
                                           static_cast<float>(std::cos(polar)));
    };
    for (int ring = 0; ring < steps; ++ring) {
        for (int sector = 0; sector < 2 * steps; ++sector) {
            if (ring + 1 < steps)
                addTriangle(point(ring, sector), point(ring + 1, sector), point(ring + 1, sector + 1));
            if (ring > 0)
                addTriangle(point(ring, sector), point(ring + 1, sector + 1), point(ring, sector + 1));
        }
    }
}

void SampleMesh::addRandomTriangles(int count, unsigned seed)
{
    // Numbers from -1 to 1, which are the same with every library, unlike those of std::uniform_real_distribution.
    std::mt19937 random(seed);
    const auto number = [&random] { return static_cast<float>(random() >> 8U) / static_cast<float>(1U << 23U) - 1.0F; };
    const auto point = [&number] {
        const float x = number(), y = number(), z = number();
        return QVector3D(x, y, z);
    };
    for (int i = 0; i < count; ++i) {
        const QVector3D centre = 50.0F * point();
        const float reach = 10.0F + 9.9F * number();
        const QVector3D a = point(), b = point(), c = point();
        addTriangle(centre + reach * a, centre + reach * b, centre + reach * c);
    }
}

void SampleMesh::addSliversInOnePlane(int count, unsigned seed)
{
    std::mt19937 random(seed);
    const auto number = [&random] { return static_cast<float>(random() >> 8U) / static_cast<float>(1U << 23U) - 1.0F; };
    const auto point = [&number](float reach) {
        const float across = reach * number(), up = reach * number();
        return QVector3D(across, -0.5F * up + 0.03F * number(), up);
    };
    for (int i = 0; i < count; ++i) {
        const QVector3D a = point(20), b = point(20), c = a + point(0.5F);
        addTriangle(a, b, c);
        addTriangle(a, c, b);
    }
}

TriangleChunks SampleMesh::chunks() const
{
    TriangleChunks list;
    for (const auto& chunk : m_chunks)
        list.append(chunk.get());
    return list;
}

QVector<float>& SampleMesh::lastChunk()
{
    return *m_chunks.back();
}

const float* SampleMesh::min() const
{
    return m_min.data();
}

const float* SampleMesh::max() const
{
    return m_max.data();
}

VertexRecord SampleMesh::record() const
{
    return m_record;
}

void SampleMesh::addVertex(const QVector3D& position, const QVector3D& normal)
{
    QVector<float>& chunk = lastChunk();
    chunk << position.x() << position.y() << position.z();
    if (m_record == VertexRecord::PositionAndNormal)
        chunk << normal.x() << normal.y() << normal.z();
    for (int axis = 0; axis < 3; ++axis) {
        auto& low = m_min[static_cast<std::size_t>(axis)];
        auto& high = m_max[static_cast<std::size_t>(axis)];
        low = std::min(low, position[axis]);
        high = std::max(high, position[axis]);
    }
}

QImage rasterise(const SampleMesh& mesh, Camera camera)
{
    return rasterise(mesh.chunks(), mesh.min(), mesh.max(), camera, mesh.record());
}

std::vector<SampleSolid> sampleSolids(const std::vector<SampleSolid>& more)
{
    std::vector<SampleSolid> solids = {
        {"Cube",
         [](SampleMesh& mesh) {
             mesh.addBox({0, 0, 0}, {10, 20, 5});
         }},
        {"Sphere",
         [](SampleMesh& mesh) {
             mesh.addSphere({3, 4, 5}, 10, 24);
         }},
        {"ThinPlate",
         [](SampleMesh& mesh) {
             mesh.addBox({-50, -50, 0}, {50, 50, 1});
         }},
        {"FarOffOrigin",
         [](SampleMesh& mesh) {
             mesh.addSphere({-6000, 8000, 3000}, 10, 12);
         }},
        {"Tiny",
         [](SampleMesh& mesh) {
             mesh.addSphere({0, 0, 0}, 0.5e-3F, 16);
         }},
        {"Huge",
         [](SampleMesh& mesh) {
             mesh.addSphere({5000, 5000, 5000}, 5000, 16);
         }},
        {"InwardCube",
         [](SampleMesh& mesh) {
             mesh.turnInward();
             mesh.addBox({0, 0, 0}, {10, 20, 5});
         }},
    };
    solids.insert(solids.end(), more.begin(), more.end());
    return solids;
}

std::vector<SampleSolid> pictureSolids(const std::vector<SampleSolid>& more)
{
    std::vector<SampleSolid> solids = sampleSolids({
        {"PixelWidePlate",
         [](SampleMesh& mesh) {
             mesh.addBox({0, 0, 0}, {0.2F, 30, 40});
         }},
        {"EdgesOnPixelCentres",
         [](SampleMesh& mesh) {
             mesh.addBox({0, 0, 0}, {20.2F, 40, 20.2F});
         }},
        {"FineSphere",
         [](SampleMesh& mesh) {
             mesh.addSphere({0, 0, 0}, 20, 90);
         }},
        {"SeveralChunks",
         [](SampleMesh& mesh) {
             mesh.addBox({0, 0, 0}, {10, 10, 10});
             mesh.startChunk();
             mesh.addSphere({5, 5, 15}, 5, 10);
             mesh.startChunk();
             mesh.startChunk();
             mesh.addBox({-5, -5, -3}, {15, 15, 0});
         }},
    });
    solids.insert(solids.end(), more.begin(), more.end());
    return solids;
}

} // namespace zr::test
