#pragma once

#include "tools/samples/preview_bytes.h"
#include "tools/samples/sample_files.h"

namespace zr::samples
{

/// What an fdg file is made of. What is not set gets the value of a valid file.
struct FdgParts {
    PreviewParts preview;
    std::optional<qint32> previewHeadOffset;
    std::optional<qint32> secondHeadOffset;
};

QByteArray fdgBytes(const FdgParts& parts);

std::vector<SampleFile> fdgSamples();

} // namespace zr::samples
