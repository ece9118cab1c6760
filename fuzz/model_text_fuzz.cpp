// Reads the input as a text STL file and as an OBJ file, and a second time with Qt alone: the same bits must come out.
// Each of its lines must keep its tokens when it is condensed, as lines that are longer than the loaders' buffer are.

#include "fuzz/mesh_fuzz.h"
#include "readers/mesh/line_condenser.h"
#include "readers/mesh/obj_mesh.h"
#include "readers/mesh/stl_mesh.h"
#include "tests/readers/mesh/plain_text_model.h"

#include <algorithm>

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
    StlMesh mesh(false, fuzz::endlessMemory);
    fuzz::parses(mesh, file, kFloatsPerTriangle);
    require(mesh.chunks().isEmpty() ||
            test::sameBits(test::cornersOf(mesh.chunks()), test::plainAsciiStl(file).corners));
}

void compareObj(const QByteArray& input)
{
    ObjMesh mesh(false, fuzz::endlessMemory);
    if (fuzz::parses(mesh, input, kFloatsPerTriangle))
        require(test::sameBits(test::cornersOf(mesh.chunks()), test::plainObj(input).corners));
}

// A first token that is too long for a keyword is cut, and all that follows it.
bool isNoKeyword(const LineTokens& line)
{
    constexpr int keptBytes = 13;
    return line.count > 0 && line.tokens[0].end - line.tokens[0].begin > keptBytes;
}

void compareCondensed(const QByteArray& line)
{
    const LineTokens expected = splitLine(line.constBegin(), line.constEnd());
    if (isNoKeyword(expected))
        return;
    LineCondenser condenser;
    const char* const middle = line.constBegin() + line.size() / 2;
    condenser.add(line.constBegin(), middle);
    condenser.add(middle, line.constEnd());
    const QByteArray condensed = condenser.takeLine();
    const LineTokens actual = splitLine(condensed.constBegin(), condensed.constEnd());
    require(actual.count == expected.count);
    for (std::size_t i = 0; i < static_cast<std::size_t>(actual.count); ++i) {
        require(
            std::equal(actual.tokens[i].begin, actual.tokens[i].end, expected.tokens[i].begin, expected.tokens[i].end));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input = zr::fuzz::rawInput(data, size);
    compareStl(input);
    compareObj(input);
    const QList<QByteArray> lines = input.split('\n');
    for (const QByteArray& line : lines)
        compareCondensed(line + '\n');
    return 0;
}
