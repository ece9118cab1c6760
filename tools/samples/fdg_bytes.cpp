// SPDX-License-Identifier: MIT
#include "tools/samples/fdg_bytes.h"

#include "tools/samples/drawn_solids.h"
#include "tools/samples/put_bytes.h"

namespace zr::samples
{

QByteArray fdgBytes(const FdgParts& parts)
{
    constexpr int kHeadBytes = 216;
    QByteArray bytes(kHeadBytes, '\0');
    putLittleEndian<qint32>(bytes, 44, parts.previewHeadOffset.value_or(kHeadBytes));
    putLittleEndian<qint32>(bytes, 48, parts.secondHeadOffset.value_or(kHeadBytes));
    putPreview(bytes, kHeadBytes, parts.preview);
    return bytes;
}

namespace
{

QByteArray pawnFdg()
{
    FdgParts parts;
    parts.preview = runLengthPreview(drawSolid(Solid::Pawn, 400, 400));
    return fdgBytes(parts);
}

} // namespace

std::vector<SampleFile> fdgSamples()
{
    return {{"pawn.fdg", pawnFdg}};
}

} // namespace zr::samples
