// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace zr
{

/// The reason where openGlLacksDisplay().
constexpr char kOpenGlNeedsDisplay[] = "OpenGL needs a display: use '--renderer software', which needs none";

/// One line for the user on why the file at `path` has no thumbnail, judged from what its request logged and from the
/// state of the file and the cache.
QString failureReason(const QString& path, const QStringList& messages);

/// The same for a request that succeeded but handed out no picture; `pngPath` is the one that the cache has recorded.
QString lostPictureReason(const QString& path, const QString& pngPath);

} // namespace zr
