#pragma once

#include <QString>
#include <QStringList>

namespace zr
{

/// One line for the user on why the file at `path` has no thumbnail, from what its request logged.
QString failureReason(const QString& path, const QStringList& messages);

} // namespace zr
