// SPDX-License-Identifier: MIT
// Reads the input as a text STL file and as an OBJ file, and a second time with Qt alone: the same bits must come out.
// Each of its lines must have the same tokens when it comes in pieces, as lines that are longer than the loaders'
// buffer do.

#include "fuzz/mesh_fuzz.h"
#include "readers/mesh/obj_mesh.h"
#include "readers/mesh/stl_mesh.h"
#include "readers/mesh/text/line_tokenizer.h"
#include "tests/readers/mesh/reference/reference_text_model.h"

namespace
{

using namespace zr;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

// A mesh of unusable size has no chunks to compare.
void compareStl(const QByteArray& input)
{
    const QByteArray file = "solid\nfacet\n" + input;
    StlMesh mesh(ChunkLayout::PositionsAndNormals, fuzz::endlessMemory);
    fuzz::parses(mesh, file, kFloatsPerTriangle);
    require(mesh.chunks().isEmpty() ||
            test::sameBits(test::cornersOf(mesh.chunks()), test::referenceAsciiStl(file).corners));
}

void compareObj(const QByteArray& input)
{
    ObjMesh mesh(ChunkLayout::PositionsAndNormals, ObjReading::Server, fuzz::endlessMemory);
    if (fuzz::parses(mesh, input, kFloatsPerTriangle))
        require(test::sameBits(test::cornersOf(mesh.chunks()), test::referenceObj(input).corners));
}

void comparePieces(const QByteArray& line)
{
    LineTokenizer tokenizer;
    const char* const middle = line.constBegin() + line.size() / 2;
    tokenizer.add(line.constBegin(), middle);
    tokenizer.add(middle, line.constEnd());
    require(tokenizer.tokens() == tokensOf(line.constBegin(), line.constEnd()));
    const QByteArray condensed = ' ' + tokenizer.tokens().join(' ');
    require(tokensOf(condensed.constBegin(), condensed.constEnd()) == tokenizer.tokens());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input = zr::fuzz::rawInput(data, size);
    compareStl(input);
    compareObj(input);
    const QList<QByteArray> lines = input.split('\n');
    for (const QByteArray& line : lines)
        comparePieces(line + '\n');
    return 0;
}
