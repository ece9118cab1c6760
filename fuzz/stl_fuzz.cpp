// SPDX-License-Identifier: MIT
#include "fuzz/mesh_fuzz.h"
#include "readers/mesh/stl_mesh.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zr;
    StlMesh mesh(ChunkLayout::PositionsAndNormals, fuzz::endlessMemory);
    fuzz::parses(mesh, fuzz::rawInput(data, size), kFloatsPerTriangle);
    StlMesh bareMesh(ChunkLayout::WholeTriangles, fuzz::endlessMemory);
    fuzz::parses(bareMesh, fuzz::rawInput(data, size), kFloatsPerBareTriangle);
    fuzz::parseWithoutMemory<StlMesh>(fuzz::rawInput(data, size), kFloatsPerTriangle);
    return 0;
}
