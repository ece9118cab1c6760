// SPDX-License-Identifier: MIT
#include "request/module_path.h"

#include <QFile>
#include <QFileInfo>

namespace zr
{

// Not QCoreApplication::applicationFilePath(), which needs the application object that is yet to be made.
QString modulePath()
{
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

QString moduleFolder()
{
    return QFileInfo(modulePath()).path();
}

} // namespace zr
