// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace zr::desktop
{

/// A text or a file's name as a terminal can show it, on one line.
QByteArray shown(const QByteArray& bytes);

/// Writes "zrthumbnailer: TEXT" to stderr.
void printError(const QByteArray& text);

/// The system's words for an error number.
QByteArray systemsWords(int error);

} // namespace zr::desktop
