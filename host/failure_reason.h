#pragma once

#include <QString>
#include <QStringList>

namespace zr
{

/// The reason where openGlLacksDisplay().
constexpr char kOpenGlNeedsDisplay[] =
    "OpenGL needs a display: run it in a graphical session, or as 'xvfb-run zrthumb ...' (package xvfb)";

/// One line for the user on why the file at `path` has no thumbnail, from what its request logged.
QString failureReason(const QString& path, const QStringList& messages);

} // namespace zr
