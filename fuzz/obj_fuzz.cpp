// SPDX-License-Identifier: MIT
#include "fuzz/mesh_fuzz.h"
#include "readers/mesh/obj_mesh.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zr;
    ObjMesh mesh(ChunkLayout::PositionsAndNormals, fuzz::endlessMemory);
    fuzz::parses(mesh, fuzz::rawInput(data, size), kFloatsPerTriangle);
    ObjMesh bareMesh(ChunkLayout::Positions, fuzz::endlessMemory);
    fuzz::parses(bareMesh, fuzz::rawInput(data, size), kFloatsPerBareTriangle);
    fuzz::parseWithoutMemory<ObjMesh>(fuzz::rawInput(data, size), kFloatsPerTriangle);
    return 0;
}
