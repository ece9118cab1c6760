// SPDX-License-Identifier: MIT
#pragma once

#include "host/file_list.h"

#include <QSize>
#include <QString>

#include <optional>

namespace zr
{

/// Where the picture of the file belongs in the folder `folder`: its place below it, with ".png".
QString outputIn(const QString& folder, const ListedFile& file);

/// Why the pictures of these files must not be written below `folder`, one line for the user; empty when they may.
QString outputFolderFault(const QString& folder, const FileList& files);

/// The size of the picture in the file `output`, when it is newer than the file at `source`.
std::optional<QSize> currentOutput(const QString& output, const QString& source);

} // namespace zr
