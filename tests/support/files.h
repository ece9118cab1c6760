// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace zr::test
{

/// Writes a file of `bytes`, replacing any, and returns its path.
QString writeFile(const QString& path, const QByteArray& bytes);

/// The file's bytes; empty if it cannot be read.
QByteArray readFile(const QString& path);

/// Moves the file's modification time; negative `seconds` move it back.
void moveTimeStamp(const QString& path, qint64 seconds);

} // namespace zr::test
