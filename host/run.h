#pragma once

#include "host/options.h"

namespace zr
{

/// Makes the thumbnails that `options` asks for and returns the program's exit status: 0 when all succeeded, 2 when the
/// outputs must not be written (see outputFault), and then nothing has been made, 128 and the number of the signal when
/// it was interrupted, else 1.
int makeThumbnails(const Options& options);

} // namespace zr
