#pragma once

#include <QImage>
#include <QString>

namespace zr
{

/// Whether there is nothing to be seen in the picture: all of it is transparent.
bool isInvisible(const QImage& picture);

/// What to tell the user of a file with such a picture: the likely reason, by its suffix.
QString invisibilityReason(const QString& path);

} // namespace zr
