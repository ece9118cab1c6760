#pragma once

#include "host/file_list.h"
#include "host/options.h"

namespace zr
{

/// Why the files that `options` names for pictures must not be written, one line for the user; empty when they may. A
/// picture never takes the place of a file that thumbnails are made of: neither of one of `files`, whatever the name it
/// is given by, nor of any that has the suffix of one, as when a name is forgotten before a pattern of the shell.
QString outputFault(const Options& options, const std::vector<ListedFile>& files);

} // namespace zr
