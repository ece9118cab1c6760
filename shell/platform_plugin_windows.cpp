#include "shell/platform_plugin.h"

#include "shell/module_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

#include <windows.h>

namespace zr
{
namespace
{

// Where Qt looks once the application object exists.
QString programFolder()
{
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    return length < MAX_PATH ? QFileInfo(QString::fromWCharArray(path)).path() : QString();
}

bool holdsPlugins(const QString& folder)
{
    return !folder.isEmpty() && !QDir(folder).entryList({QStringLiteral("*.dll")}, QDir::Files).isEmpty();
}

} // namespace

bool platformPluginExists()
{
    QStringList folders = QCoreApplication::libraryPaths();
    folders += {moduleFolder(), programFolder()};
    return holdsPlugins(qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH")) ||
           std::any_of(folders.cbegin(), folders.cend(),
                       [](const QString& folder) { return holdsPlugins(folder + QLatin1String("/platforms")); });
}

} // namespace zr
