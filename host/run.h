// SPDX-License-Identifier: MIT
#pragma once

#include "host/options.h"

namespace zr
{

/// Makes the thumbnails that `options` asks for and returns the program's exit status: 0 when all succeeded, 2 when the
/// outputs must not be written (see outputFault), in which case nothing is made, 128 plus the number of the signal when
/// it was interrupted, else 1.
int makeThumbnails(const Options& options);

} // namespace zr
