// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace zr::test
{

/// The suffixes that the server is registered for, with their dots.
inline const QStringList kRegisteredSuffixes = QStringLiteral(ZRTHUMB_REGISTERED_SUFFIXES).split(QLatin1Char(' '));

} // namespace zr::test
