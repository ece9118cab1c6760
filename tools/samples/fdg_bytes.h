// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/preview_bytes.h"
#include "tools/samples/sample_files.h"

namespace zr::samples
{

/// The parts of an fdg file. Unset ones get the values of a valid file.
struct FdgParts {
    PreviewParts preview;
    std::optional<qint32> previewHeadOffset;
    std::optional<qint32> secondHeadOffset;
};

QByteArray fdgBytes(const FdgParts& parts);

std::vector<SampleFile> fdgSamples();

} // namespace zr::samples
