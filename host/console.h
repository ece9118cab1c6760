#pragma once

#include <QString>

#include <cstdio>

namespace zr
{

/// Prints the text and a line feed at once, in the terminal's encoding.
void printLine(std::FILE* stream, const QString& text);

/// The text without what a terminal would act on: names of files may hold line feeds and control sequences.
QString printable(QString text);

} // namespace zr
