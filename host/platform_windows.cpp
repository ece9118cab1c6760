#include "host/platform.h"

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
