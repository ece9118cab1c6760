// SPDX-License-Identifier: MIT
#pragma once

#include "render/triangle_chunks.h"
#include "tests/support/software_rasteriser.h"

#include <QVector3D>

#include <array>
#include <memory>
#include <vector>

namespace zr::test
{

/// A mesh that a test builds: triangles with their flat normals, cut into chunks where the test wants it.
class SampleMesh
{
public:
    explicit SampleMesh(VertexRecord record = VertexRecord::PositionAndNormal);

    /// Anticlockwise seen from outside.
    void addTriangle(const QVector3D& a, const QVector3D& b, const QVector3D& c);
    void startChunk();

    /// Turns the triangles that are added later inside out.
    void turnInward();

    void addBox(const QVector3D& low, const QVector3D& high);
    void addSphere(const QVector3D& centre, float radius, int steps);

    /// A triangle that does not count towards the box.
    void addOutside(const QVector3D& a, const QVector3D& b, const QVector3D& c);

    /// Triangles all over a box of 100 units, small and large ones, through each other, fronts and backs.
    void addRandomTriangles(int count, unsigned seed);

    /// Thin triangles all over a plane that both cameras see, each turned a little out of it, fronts and backs.
    void addSliversInOnePlane(int count, unsigned seed);

    TriangleChunks chunks() const;
    QVector<float>& lastChunk();
    const float* min() const;
    const float* max() const;
    VertexRecord record() const;

private:
    void addVertex(const QVector3D& position, const QVector3D& normal);

    VertexRecord m_record;
    bool m_isInward = false;
    std::vector<std::unique_ptr<QVector<float>>> m_chunks;
    std::array<float, 3> m_min;
    std::array<float, 3> m_max;
};

/// A mesh by its name.
struct SampleSolid {
    const char* name;
    void (*build)(SampleMesh& mesh);
};

/// Solids of many sizes and places, a thin one, and one that is seen from its inside; then `more`.
std::vector<SampleSolid> sampleSolids(const std::vector<SampleSolid>& more);

/// The same, and some that are hard to draw or come in several chunks; then `more`.
std::vector<SampleSolid> pictureSolids(const std::vector<SampleSolid>& more);

/// The pixel as it is in memory, which QImage::pixel() converts where alpha is 0.
inline QRgb rawPixel(const QImage& picture, int x, int y)
{
    return reinterpret_cast<const QRgb*>(picture.constScanLine(y))[x];
}

/// The reference picture of the mesh.
QImage rasterise(const SampleMesh& mesh, Camera camera = Camera::Perspective);

} // namespace zr::test
