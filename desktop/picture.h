// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

namespace zr::desktop
{

class SourceFile;

/// Uses once what opens files or makes threads when it is first used for such a file. Before confine().
void prepareReading(const SourceFile& source);

/// A thumbnail, or why there is none.
struct Thumbnail {
    QImage picture;
    QByteArray reason; ///< one line, when there is no picture
};

/// The file's thumbnail, whose longest side is `sizePx` for models and at most that for others.
Thumbnail makeThumbnail(const SourceFile& source, int sizePx);

} // namespace zr::desktop
