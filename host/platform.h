#pragma once

#include <QStringList>

#include <cstdio>

namespace zr
{

/// The program's arguments, its own name first, decoded without Qt's application object.
QStringList commandLineArguments(int argc, char** argv);

/// Whether the stream is a terminal.
bool stderrIsTerminal();
bool stdoutIsTerminal();

/// Opens what is closed of stdin, stdout and stderr on the null device, so that no file that is opened later takes the
/// place of one of them. To be called before anything else.
void openStandardStreams();

/// Gives the process the home folder that the system knows of the user when the environment names none. Returns what to
/// tell the user when there is none either, so that the cache has no place; else empty.
QString homeFault();

/// What to do when the path of the data folder cannot be used.
QString otherDataFolder();

/// The system's words for a disk without room.
QString diskFullText();

/// Writes the text to `stream` and empties its buffer; false, with errno, when it does not get there. In the terminal's
/// encoding; on Windows consoles get any character, files and pipes UTF-8.
bool writeText(std::FILE* stream, const QString& text);

/// What is written to stdout from now on stays as it is.
void makeStdoutBinary();

/// Ends the process with `status` at once: the application object is never destroyed, so the usual tearing down of
/// Qt's libraries must not run.
[[noreturn]] void leave(int status);

} // namespace zr
