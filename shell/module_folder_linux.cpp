#include "shell/module_folder.h"

#include <QFile>
#include <QFileInfo>

namespace zr
{

// Not QCoreApplication::applicationDirPath(), which needs the application object that is yet to be made.
QString moduleFolder()
{
    return QFileInfo(QFile::symLinkTarget(QStringLiteral("/proc/self/exe"))).path();
}

} // namespace zr
