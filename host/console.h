// SPDX-License-Identifier: MIT
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

/// Writes the bytes to stdout unchanged. Returns why not all of them could be written; empty when they were.
QString writeStdout(const QByteArray& bytes);

/// Why something that was printed to stdout did not get there, in the system's words; empty when everything did.
QString stdoutFault();

/// Whether what read stdout has ended, so that nothing else will get there.
bool stdoutIsGone();

} // namespace zr
