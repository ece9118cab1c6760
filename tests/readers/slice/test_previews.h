#pragma once

#include "tools/samples/drawn_solids.h"
#include "tools/samples/preview_bytes.h"

#include <functional>

namespace zr::test
{

/// A 3 x 2 preview with the key colour, runs, and a run in the key's colour without its flag.
inline samples::PreviewParts smallPreview()
{
    samples::PreviewParts preview;
    preview.width = 3;
    preview.height = 2;
    preview.data = samples::wordBytes({0x0000, 0xF820, 0x0002, 0x0000, 0x0020, 0x0000});
    return preview;
}

/// A drawn preview of that size.
inline samples::PreviewParts solidPreview(int width, int height)
{
    return samples::runLengthPreview(samples::drawSolid(samples::Solid::Rook, width, height));
}

/// Makes the bytes of a valid file with one thing changed: `Parts` are a format's, with a preview in them.
template <typename Parts>
using PartsToBytes = QByteArray (*)(const Parts&);

template <typename Parts>
QByteArray changedFile(PartsToBytes<Parts> toBytes, const samples::PreviewParts& preview,
                       const std::function<void(Parts&)>& change)
{
    Parts parts;
    parts.preview = preview;
    change(parts);
    return toBytes(parts);
}

} // namespace zr::test
