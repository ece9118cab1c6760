// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace zr::test
{

/// Overwrites this part of the cache's database, which must be large enough.
void overwriteDatabase(qint64 offset, qint64 bytes);

/// Replaces the cache's database with one that another program made with these statements.
void makeForeignDatabase(const QStringList& statements);

} // namespace zr::test
