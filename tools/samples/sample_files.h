// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <vector>

namespace zr::samples
{

/// A valid file of one of the supported formats.
struct SampleFile {
    const char* name;     ///< file name with its suffix
    QByteArray (*make)(); ///< its bytes, the same at every call
};

/// At least one file for each supported suffix.
const std::vector<SampleFile>& sampleFiles();

} // namespace zr::samples
