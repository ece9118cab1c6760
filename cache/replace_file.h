#pragma once

#include <QString>

namespace zr
{

/// Gives the file `from` the name `to` of the same folder, in place of any file of that name, in one step: at every
/// moment there is a file `to`, the old one or the new one. False, with both files as they were, when that fails.
/// On Windows an older file with the same contents stays, with the present time.
bool replaceFile(const QString& from, const QString& to);

} // namespace zr
