#pragma once

#include <QByteArray>
#include <QString>

namespace zr::fuzz
{

/// Valid pictures of the maximum size are right, but take so long that nothing else would be tried. This makes them
/// small ones in an input of the format, wherever its reader would find the size.
void limitPreview(const QString& suffix, QByteArray& input);

} // namespace zr::fuzz
