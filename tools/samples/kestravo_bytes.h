// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/preview_bytes.h"
#include "tools/samples/sample_files.h"

namespace zr::samples
{

/// The parts of a project file. Unset ones get the values of a valid file.
struct KestravoParts {
    PreviewParts preview;
    std::optional<qint32> thumbnailOffset;
};

QByteArray kestravoBytes(const KestravoParts& parts);

std::vector<SampleFile> kestravoSamples();

} // namespace zr::samples
