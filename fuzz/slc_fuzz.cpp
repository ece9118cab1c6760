// SPDX-License-Identifier: MIT
// Reads the input as an SLC file, and a second time step by step: the same triples must come out.

#include "fuzz/mesh_fuzz.h"
#include "readers/mesh/slc_mesh.h"
#include "tests/readers/mesh/reference/reference_slc.h"
#include "tests/readers/mesh/reference/reference_text_model.h"

namespace
{

using Points = std::vector<std::array<float, 3>>;

// Every second triple is a normal, whose last bits may differ.
Points positions(const Points& triples)
{
    Points points;
    for (std::size_t i = 0; i < triples.size(); i += 2)
        points.push_back(triples[i]);
    return points;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zr;
    const QByteArray input = fuzz::rawInput(data, size);
    SlcMesh bareMesh(ChunkLayout::Positions, fuzz::endlessMemory);
    fuzz::parses(bareMesh, input, kFloatsPerBareTriangle);
    SlcMesh wholeMesh(ChunkLayout::WholeTriangles, fuzz::endlessMemory);
    fuzz::parses(wholeMesh, input, kFloatsPerBareTriangle);
    SlcMesh mesh(ChunkLayout::PositionsAndNormals, fuzz::endlessMemory);
    fuzz::parses(mesh, input, kFloatsPerTriangle);

    const auto expected = test::referenceSlc(input).triples;
    const auto actual = test::triplesOf(mesh.chunks());
    if (actual.size() != expected.size() || !test::sameBits(positions(actual), positions(expected)))
        std::abort();
    fuzz::parseWithoutMemory<SlcMesh>(input, kFloatsPerTriangle);
    return 0;
}
