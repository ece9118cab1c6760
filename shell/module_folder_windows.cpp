#include "shell/module_folder.h"

#include <QFileInfo>

#include <string>

#include <windows.h>

namespace zr
{
namespace
{

// The length that the server has always used.
constexpr DWORD kNarrowPathBytes = 256;
constexpr DWORD kMaxPathLength = 32768;

// The module that holds this function, whichever program loaded it.
HMODULE thisModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&thisModule), &module);
    return module;
}

QString narrowPath()
{
    char path[kNarrowPathBytes + 1] = {};
    GetModuleFileNameA(thisModule(), path, kNarrowPathBytes);
    return QString::fromLocal8Bit(path);
}

QString widePath()
{
    std::wstring path(kMaxPathLength, L'\0');
    path.resize(GetModuleFileNameW(thisModule(), path.data(), kMaxPathLength));
    return QString::fromStdWString(path);
}

} // namespace

// The short form in the code page is what Qt's library paths have always been given. It leads nowhere when the path is
// longer or has letters of other languages.
QString moduleFolder()
{
    const QFileInfo narrow(narrowPath());
    return narrow.isFile() ? narrow.path() : QFileInfo(widePath()).path();
}

} // namespace zr
