// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

/// Renames the file `from` to `to` in the same folder, replacing any file of that name in one step: at every moment
/// there is a file `to`, the old one or the new one. False, with both files unchanged, when that fails. On Windows an
/// older file with the same contents stays, with the current time.
bool replaceFile(const QString& from, const QString& to);

} // namespace zr
