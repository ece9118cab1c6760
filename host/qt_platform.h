// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace zr
{

/// Makes Qt use the platform that QT_QPA_PLATFORM asks for, else one that works here, even without a display. Where
/// none works, the program ends with status 1 and a line on stderr. To be called before the first request and before
/// any thread starts, after the message handler is set.
void chooseQtPlatform();

/// The user's variables that Qt did not start with, as "NAME=VALUE". To be called after the first request.
QStringList unusedPlatformSettings();

/// Whether Qt's platform is one that the user asked for. To be called after the first request.
bool isPlatformOfUser();

/// What to tell the user when Qt ends the process with `message`, one line.
QString qtFailure(const QString& message);

/// Whether OpenGL lacks the display that it needs here. To be called after Qt has started.
bool openGlLacksDisplay();

} // namespace zr
