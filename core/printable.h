// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

/// The text without anything that a terminal would interpret: file names may contain line feeds and control sequences.
QString printable(QString text);

} // namespace zr
