#pragma once

#include <QStringList>

#include <cstdio>

namespace zr
{

/// The program's arguments, its own name first, decoded without Qt's application object.
QStringList commandLineArguments(int argc, char** argv);

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

/// Whether the stream is a terminal.
bool stderrIsTerminal();
bool stdoutIsTerminal();

/// Opens what is closed of stdin, stdout and stderr on the null device, so that no file that is opened later takes the
/// place of one of them. To be called before anything else.
void openStandardStreams();

/// Gives the process the home folder that the system knows of the user when the environment names none. Returns what to
/// tell the user when there is none either, so that the cache has no place; else empty.
QString homeFault();

/// Writes the text to `stream` and empties its buffer; false, with errno, when it does not get there. In the terminal's
/// encoding; on Windows consoles get any character, files and pipes UTF-8.
bool writeText(std::FILE* stream, const QString& text);

/// What is written to stdout from now on stays as it is.
void makeStdoutBinary();

/// Ends the process with `status` at once: the application object is never destroyed, so the usual tearing down of
/// Qt's libraries must not run.
[[noreturn]] void leave(int status);

} // namespace zr
