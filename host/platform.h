// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>

#include <cstdio>

namespace zr
{

/// The program's arguments, its own name first, decoded without Qt's application object. To be called first: on Linux
/// it makes names survive that are not text.
QStringList commandLineArguments(int argc, char** argv);

/// The file name that `bytes` mean in lists of names: in the encoding of the system's names, on Windows in UTF-8.
QString fileNameFromBytes(const QByteArray& bytes);

/// How the system's folders compare names.
Qt::CaseSensitivity caseOfNames();

/// Whether the stream is a terminal.
bool stderrIsTerminal();
bool stdoutIsTerminal();
bool stdinIsTerminal();

/// Opens the null device for each of stdin, stdout and stderr that is closed, so that no file that is opened later
/// becomes one of them. To be called before anything else.
void openStandardStreams();

/// Sets the user's home folder from the system's data when the environment names none. Returns what to tell the user
/// when there is none either, so that the cache has no place; else empty.
QString homeFault();

/// What to do when the path of the data folder cannot be used.
QString otherDataFolder();

/// The system's words for a disk without room.
QString diskFullText();

/// Writes the text to `stream` and flushes it; false, with errno, when that fails. In the terminal's encoding; on
/// Windows consoles get any character, files and pipes UTF-8.
bool writeText(std::FILE* stream, const QString& text);

/// From now on, what is written to stdout is not translated.
void makeStdoutBinary();

/// The same for what is read from stdin.
void makeStdinBinary();

/// Makes this process one that is led by another: stdin and stdout are not translated, and what asks a terminal's
/// programs to end, such as Ctrl+C, leaves it alone. What libraries print to stdout goes nowhere. Returns the stream to
/// what was stdout; null when there is none.
std::FILE* followParent();

/// What starts this very program once more, even after an update has put another file in the place of its own.
QString ownProgram();

/// The memory that this process has at the moment, in bytes; 0 when the system does not tell.
qint64 ownMemory();

/// Ends the process with `status` at once: the application object is never destroyed, so the usual teardown of Qt's
/// libraries must not run.
[[noreturn]] void leave(int status);

} // namespace zr
