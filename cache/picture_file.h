// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace zr
{

/// Saves the picture as the file `path`, in the format of its suffix. Readers never see a partial file: they find the
/// old one or the new one, even when this process is killed. False when it could not be saved completely; the older
/// file, if any, is then unchanged.
///
/// It is written to a temporary file, which then replaces `path`. Where that is impossible (`path` is a symbolic link,
/// its folder takes no new files, another process keeps the old file open), `path` is written directly.
bool savePicture(const QImage& picture, const QString& path);

} // namespace zr
