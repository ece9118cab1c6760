#include "host/platform.h"

#include <QFile>
#include <QGuiApplication>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <pwd.h>
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

bool stdoutIsTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

void openStandardStreams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // The lowest free number is what it gets.
        if (fcntl(descriptor, F_GETFD) == -1 && open("/dev/null", O_RDWR) != descriptor)
            std::_Exit(EXIT_FAILURE);
    }
}

bool findHome()
{
    if (!qEnvironmentVariableIsEmpty("HOME") || !qEnvironmentVariableIsEmpty("XDG_DATA_HOME"))
        return true;
    const passwd* const user = getpwuid(getuid());
    // The root folder is what services have that need none.
    const bool hasHome = user && user->pw_dir && *user->pw_dir && std::strcmp(user->pw_dir, "/") != 0;
    return hasHome && qputenv("HOME", user->pw_dir);
}

bool writeText(std::FILE* stream, const QString& text)
{
    return std::fputs(text.toLocal8Bit().constData(), stream) >= 0 && std::fflush(stream) == 0;
}

void makeStdoutBinary() {}

void leave(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace zr
