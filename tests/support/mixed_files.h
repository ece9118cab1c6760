// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace zr::test
{

/// Makes `count` files of all formats in folders below `folder`: samples under names of their own, some of them under
/// equal names in several folders, and each tenth hostile, a sample that is cut, overwritten in places or filled with
/// noise. The same ones at every call. Returns their paths below `folder`, sorted.
QStringList makeMixedFiles(const QString& folder, int count);

} // namespace zr::test
