// SPDX-License-Identifier: MIT
#include "host/qt_platform.h"

namespace zr
{

// There is one platform, and no variable changes it, see host_shield_windows.cpp.
void chooseQtPlatform() {}

QStringList unusedPlatformSettings()
{
    return {};
}

bool isPlatformOfUser()
{
    return false;
}

QString qtFailure(const QString& message)
{
    return QStringLiteral("Qt cannot go on: ") + message.simplified();
}

bool openGlLacksDisplay()
{
    return false;
}

} // namespace zr
