#include "host/platform.h"

#include <QFile>
#include <QGuiApplication>

#include <clocale>
#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace zr
{

QStringList commandLineArguments(int argc, char** argv)
{
    // Qt's application object does this too, but only with the first request.
    std::setlocale(LC_ALL, "");
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    return arguments;
}

// Qt aborts the process when the platform that it picks has no display, so every list ends with one that needs none.
void chooseQtPlatform()
{
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return;
    QByteArrayList platforms;
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        platforms.append("xcb");
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        platforms.append("wayland");
    platforms.append("offscreen");
    qputenv("QT_QPA_PLATFORM", platforms.join(';'));
}

// The requests have made it.
void prepareDrawing() {}

bool openGlLacksDisplay()
{
    return QGuiApplication::platformName() == QLatin1String("offscreen");
}

bool stderrIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

void leave(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace zr
