#pragma once

#include <QStringList>

namespace zr
{

/// Lets Qt run with what QT_QPA_PLATFORM asks for, else with what there is, also where there is no display. Where no
/// platform works the program ends with status 1 and a line on stderr. To be called before the first request and any
/// thread, after the message handler is set.
void chooseQtPlatform();

/// The variables of the user that Qt did not start with, as "NAME=VALUE". To be called after the first request.
QStringList unusedPlatformSettings();

/// Whether Qt's platform is one that the user asked for. To be called after the first request.
bool isPlatformOfUser();

/// What to tell the user when Qt ends the process with `message`, one line.
QString qtFailure(const QString& message);

/// Whether OpenGL lacks the display that it needs here.
bool openGlLacksDisplay();

} // namespace zr
