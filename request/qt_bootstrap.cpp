// SPDX-License-Identifier: MIT
#include "request/qt_bootstrap.h"

#include "core/log_contract.h"
#include "core/log_file.h"
#include "request/module_path.h"

#include <QApplication>

#include <mutex>

namespace zr
{
namespace
{

// The application object is never destroyed: its destructor would run while the process unloads its modules, where it
// hangs or crashes the host. Qt's cache of compiled shaders, a folder of its own in the user's profile, is turned off:
// it saves no time with shaders as small as ours, and uninstalling would leave it there. A plug-in's application leaves
// the process's DPI awareness alone, which affects all windows of the host.
void makeApplication()
{
    QCoreApplication::setAttribute(Qt::AA_DisableShaderDiskCache);
    QCoreApplication::setAttribute(Qt::AA_PluginApplication);
    static int argc = 1;
    static char name[] = "platformplugin";
    static char* argv[] = {name, nullptr};
    static auto* const application = new QApplication(argc, argv);
    Q_UNUSED(application)
}

void addModuleLibraryPath()
{
    const QString folder = moduleFolder() + QLatin1Char('/');
    if (!QCoreApplication::libraryPaths().contains(folder))
        QCoreApplication::addLibraryPath(folder);
}

} // namespace

void startQt()
{
    static auto* const mutex = new std::mutex;
    const std::lock_guard<std::mutex> guard(*mutex);
    addModuleLibraryPath();
    if (QCoreApplication::startingUp()) {
        makeApplication();
        logLine(line::kApplicationStarted, QStringLiteral("app start"));
    }
    logLine(line::kApplicationReady, QStringLiteral("app after"));
}

} // namespace zr
