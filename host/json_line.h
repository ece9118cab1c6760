// SPDX-License-Identifier: MIT
#pragma once

#include "host/file_task.h"

#include <QString>

namespace zr
{

// One line of JSON for each file, with its end of line: an object on its own, in ASCII but for what is UTF-8 anyway.
// Names that are not text have U+FFFD in place of each byte that is not; then the same key with "Bytes" at its end has
// all of the name's bytes in base64.

/// {"file", "picture", "width", "height", "cached", "milliseconds"}, and "note" where there is one.
QString resultLine(const QString& file, const FileResult& result);

/// {"file", "error", "reason"}.
QString failureLine(const QString& file, const Failure& failure);

} // namespace zr
