// SPDX-License-Identifier: MIT
#include "tools/samples/kestravo_bytes.h"

#include "tools/samples/drawn_solids.h"
#include "tools/samples/put_bytes.h"

namespace zr::samples
{

QByteArray kestravoBytes(const KestravoParts& parts)
{
    constexpr int kHeadBytes = 412;
    QByteArray bytes(kHeadBytes, '\0');
    putLittleEndian<qint32>(bytes, 12, parts.thumbnailOffset.value_or(kHeadBytes));
    putPreview(bytes, kHeadBytes, parts.preview);
    return bytes;
}

namespace
{

QByteArray vaseKestravo(int width, int height)
{
    KestravoParts parts;
    parts.preview = runLengthPreview(drawSolid(Solid::Vase, width, height));
    return kestravoBytes(parts);
}

} // namespace

std::vector<SampleFile> kestravoSamples()
{
    return {
        {"vase.kestravo", [] { return vaseKestravo(320, 400); }},
        {"vase-large.kestravo", [] { return vaseKestravo(640, 480); }},
    };
}

} // namespace zr::samples
