// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace zr
{

/// The reason where openGlLacksDisplay().
constexpr char kOpenGlNeedsDisplay[] = "OpenGL needs a display: use '--renderer software', which needs none";

/// Why a file has no thumbnail.
struct Failure {
    QString key;    ///< for programs, see core/log_contract.h and host/failure_keys.h
    QString reason; ///< for people, one line; empty when nothing failed
};

/// Why the file at `path` has no thumbnail, judged from what its request logged and from the state of the file and the
/// cache.
Failure failureOf(const QString& path, const QStringList& messages);

/// The same for a request that succeeded but handed out no picture; `pngPath` is the one that the cache has recorded.
Failure lostPicture(const QString& path, const QString& pngPath);

} // namespace zr
