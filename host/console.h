#pragma once

#include <QByteArray>
#include <QString>

#include <cstdio>

namespace zr
{

/// Writes the text to stdout or stderr at once, in the terminal's encoding. What cannot be written to stdout is
/// remembered, see stdoutFault().
void printText(std::FILE* stream, const QString& text);

/// The same with an end of line.
void printLine(std::FILE* stream, const QString& text);

/// Writes the bytes to stdout as they are. Returns why they could not be written, all of them; empty when they were.
QString writeStdout(const QByteArray& bytes);

/// Why something that was printed to stdout did not get there, in the system's words; empty when all did.
QString stdoutFault();

/// The text without what a terminal would act on: names of files may hold line feeds and control sequences.
QString printable(QString text);

} // namespace zr
