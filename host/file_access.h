// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

namespace reason
{

constexpr char kNoSuchFile[] = "no such file";
constexpr char kIsFolder[] = "it is a folder (--recursive makes thumbnails of the files below it)";
constexpr char kNotRegular[] = "it is not a regular file";
constexpr char kLooseLink[] = "it is a link to a file that does not exist";
constexpr char kNotPermitted[] = "the file cannot be opened: permission denied";
constexpr char kWriteNotPermitted[] = "permission denied";

} // namespace reason

/// Why the source file at the absolute `path` cannot be read, one line for the user; empty when it can.
QString sourceFault(const QString& path);

/// Why the file at `path` cannot be written, or why the folder takes no new files, in a few words; empty when no reason
/// is known.
QString writeFault(const QString& path);

/// Whether the file system of the existing folder accepts files of that name.
bool takesName(const QString& folder, const QString& name);

} // namespace zr
