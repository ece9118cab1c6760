// SPDX-License-Identifier: MIT
// Reads the input in both ways, and as other programs do a second time step by step: the same bits must come out.

#include "fuzz/mesh_fuzz.h"
#include "readers/mesh/obj_mesh.h"
#include "tests/readers/mesh/reference/reference_standard_obj.h"
#include "tests/readers/mesh/reference/reference_text_model.h"

namespace
{

using namespace zr;

void parseAs(ObjReading reading, const QByteArray& input)
{
    ObjMesh mesh(ChunkLayout::PositionsAndNormals, reading, fuzz::endlessMemory);
    const bool parsed = fuzz::parses(mesh, input, kFloatsPerTriangle);
    ObjMesh bareMesh(ChunkLayout::Positions, reading, fuzz::endlessMemory);
    fuzz::parses(bareMesh, input, kFloatsPerBareTriangle);
    fuzz::parseWithoutMemory<ObjMesh>(input, kFloatsPerTriangle, reading);

    // A mesh of unusable size has no chunks to compare.
    if (reading == ObjReading::Server || !parsed)
        return;
    const test::ReferenceModel reference = test::referenceStandardObj(input);
    if (!test::sameBits(test::cornersOf(mesh.chunks()), reference.corners) ||
        mesh.boundingBox() != test::boundsOf(reference.points))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (const ObjReading reading : {ObjReading::Server, ObjReading::Standard})
        parseAs(reading, zr::fuzz::rawInput(data, size));
    return 0;
}
