// SPDX-License-Identifier: MIT
#pragma once

#include "host/file_list.h"
#include "host/options.h"

namespace zr
{

/// Why the files that `options` names for pictures must not be written, one line for the user; empty when they may. A
/// picture never replaces a file that thumbnails are made of: neither one of `files`, whatever name it is given by, nor
/// any with a supported suffix, as when the output's name is forgotten before a pattern of the shell.
QString outputFault(const Options& options, const FileList& files);

} // namespace zr
