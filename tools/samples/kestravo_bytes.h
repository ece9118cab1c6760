#pragma once

#include "tools/samples/preview_bytes.h"
#include "tools/samples/sample_files.h"

namespace zr::samples
{

/// What a project file is made of. What is not set gets the value of a valid file.
struct KestravoParts {
    PreviewParts preview;
    std::optional<qint32> thumbnailOffset;
};

QByteArray kestravoBytes(const KestravoParts& parts);

std::vector<SampleFile> kestravoSamples();

} // namespace zr::samples
