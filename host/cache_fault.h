#pragma once

#include <QString>

namespace zr
{

/// What keeps the cache from taking a picture of the source file at `path` and what to do about it, one line for the
/// user; empty when nothing is found. Looks at the present state only: waits for nothing and changes nothing.
QString cacheFault(const QString& path);

} // namespace zr
