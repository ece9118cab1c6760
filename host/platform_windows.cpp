#include "host/platform.h"

#include <QGuiApplication>

#include <cstdio>

#include <io.h>
#include <windows.h>

#include <shellapi.h>

namespace zr
{

// The arguments of main() are in the code page, which cannot name every file.
QStringList commandLineArguments(int, char**)
{
    QStringList arguments;
    int count = 0;
    LPWSTR* const texts = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 0; i < count; ++i)
        arguments.append(QString::fromWCharArray(texts[i]));
    LocalFree(texts);
    return arguments;
}

void chooseQtPlatform() {}

void prepareDrawing()
{
    static int argc = 1;
    static char name[] = "zrthumb";
    static char* argv[] = {name, nullptr};
    // Never destroyed, see leave().
    static auto* const application = QCoreApplication::startingUp() ? new QGuiApplication(argc, argv) : nullptr;
    Q_UNUSED(application)
}

bool openGlLacksDisplay()
{
    return false;
}

bool stderrIsTerminal()
{
    return _isatty(_fileno(stderr)) != 0;
}

void leave(int status)
{
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
    std::abort();
}

} // namespace zr
