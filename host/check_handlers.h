#pragma once

#include "host/check.h"

#include <guiddef.h>

namespace zr
{

/// Whether the file browser shows thumbnails at all, and whom it asks for those of each suffix (Windows).
Findings checkHandlers();

/// The identifier as the registry spells it.
QString classIdText(const GUID& id);

} // namespace zr
