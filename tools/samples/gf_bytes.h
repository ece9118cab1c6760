// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/preview_bytes.h"
#include "tools/samples/sample_files.h"

namespace zr::samples
{

/// The parts of a gf file. Unset ones get the values of a valid file.
struct GfParts {
    PreviewParts preview;
    std::optional<qint32> previewHeadOffset;
};

QByteArray gfBytes(const GfParts& parts);

/// The preview of a picture with its channels as 16-bit words.
PreviewParts channelWordPreview(const QImage& picture);

std::vector<SampleFile> gfSamples();

} // namespace zr::samples
