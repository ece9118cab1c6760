#pragma once

#include "host/options.h"

namespace zr
{

/// Makes the thumbnails that `options` asks for and returns the program's exit status: 0 when all succeeded, else 1.
int makeThumbnails(const Options& options);

} // namespace zr
