#pragma once

#include <QImage>
#include <QString>

namespace zr
{

/// Saves the picture as the file `path`, in the format of its suffix, so that no reader ever sees a part of it: other
/// processes, and later ones when this one is killed, find the old file or the new one, whole. False when it could
/// not be saved, also for a part of it; the file of that name is then the one from before, if any.
///
/// It goes to a file of its own first, which then takes the place of `path`. Where that cannot be done (`path` is a
/// symbolic link, its folder takes no new files, somebody keeps the old file open) it is written to `path` directly.
bool savePicture(const QImage& picture, const QString& path);

} // namespace zr
