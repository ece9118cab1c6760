#pragma once

#include <QStringList>

namespace zr
{

/// The program's arguments, its own name first, decoded without Qt's application object.
QStringList commandLineArguments(int argc, char** argv);

/// Lets Qt run where there is no display, unless QT_QPA_PLATFORM says what to use. To be called before the first
/// request.
void chooseQtPlatform();

/// Makes the application object without which Qt draws no text, if the program has none: that of a server in a DLL is
/// not the program's.
void prepareDrawing();

/// Whether OpenGL lacks the display that it needs here.
bool openGlLacksDisplay();

/// Whether stderr is a terminal.
bool stderrIsTerminal();

/// Ends the process with `status` at once: the application object is never destroyed, so the usual tearing down of
/// Qt's libraries must not run.
[[noreturn]] void leave(int status);

} // namespace zr
