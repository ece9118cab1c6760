// SPDX-License-Identifier: MIT
#include "tools/samples/sample_files.h"

#include "tools/samples/sample_headers.inc"

namespace zr::samples
{

const std::vector<SampleFile>& sampleFiles()
{
    static const std::vector<SampleFile> files = [] {
        std::vector<SampleFile> all;
        for (const auto& samples : {
#include "tools/samples/sample_rows.inc"
             })
            all.insert(all.end(), samples.begin(), samples.end());
        return all;
    }();
    return files;
}

} // namespace zr::samples
