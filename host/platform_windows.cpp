#include "host/platform.h"

#include "shell/module_folder.h"

#include <QDir>

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

bool platformPluginLoads()
{
    const QString path = QDir::toNativeSeparators(moduleFolder()) + QLatin1String("\\platforms\\qwindows.dll");
    return LoadLibraryExW(reinterpret_cast<LPCWSTR>(path.utf16()), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
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
