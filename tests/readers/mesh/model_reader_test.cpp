// SPDX-License-Identifier: MIT
#include "tests/readers/mesh/model_reader_test.h"

namespace zr::test
{

const std::vector<SampleSolid>& modelCases()
{
    static const std::vector<SampleSolid> cases = sampleSolids({
        {"TinyAndFine",
         [](SampleMesh& mesh) {
             mesh.addSphere({0, 0, 0}, 0.5e-2F, 90);
         }},
        {"TwoSolids",
         [](SampleMesh& mesh) {
             mesh.addBox({-10, -10, -10}, {0, 0, 0});
             mesh.addSphere({8, 8, 8}, 6, 20);
         }},
    });
    return cases;
}

std::vector<Triangle> trianglesOf(const SampleMesh& mesh)
{
    std::vector<Triangle> triangles;
    const TriangleChunks chunks = mesh.chunks();
    for (const QVector<float>* chunk : chunks) {
        for (int i = 0; i + 18 <= chunk->size(); i += 18) {
            Triangle triangle;
            for (std::size_t corner = 0; corner < 3; ++corner) {
                for (std::size_t axis = 0; axis < 3; ++axis)
                    triangle[corner][axis] = chunk->at(i + static_cast<int>(6 * corner + axis));
            }
            triangles.push_back(triangle);
        }
    }
    return triangles;
}

} // namespace zr::test
