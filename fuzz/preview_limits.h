// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace zr::fuzz
{

/// Pictures of the max size are valid, but take so long that little else would be tried. This makes them small in an
/// input of the format, wherever its reader finds the size.
void limitPreview(const QString& suffix, QByteArray& input);

} // namespace zr::fuzz
