// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"
#include "host/check/thumbnailers.h"

namespace zr
{

/// Who makes the thumbnails of each suffix, of those programs that are registered (Linux).
Findings checkSuffixes(const QVector<Thumbnailer>& thumbnailers);

/// Whether KDE's plug-in is in one of the folders of Qt's plug-ins (Linux).
Finding checkKde(const QStringList& pluginFolders);

} // namespace zr
