// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace zr::fuzz
{

/// Puts the input into a temporary file for code that takes a path, and returns that path. There is one file for the
/// whole process; each call replaces its contents.
QString inputFile(const QByteArray& input);

} // namespace zr::fuzz
