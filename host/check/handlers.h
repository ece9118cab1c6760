// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

namespace zr
{

/// How to restore the registration.
const QString kRegisterAnew =
    QStringLiteral("run the installer again, or register.cmd in the folder of ZRThumbnail.dll");

/// Whether the file browser shows thumbnails at all, and lets the server in (Windows).
Findings checkPolicies();

/// Which handler the file browser asks for the thumbnails of each suffix (Windows).
Findings checkHandlers();

} // namespace zr
