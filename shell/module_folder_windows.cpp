#include "shell/module_folder.h"

#include <QFileInfo>

#include <windows.h>

namespace zr
{
namespace
{

// The length that the server has always used: longer paths give no plug-in folder.
constexpr DWORD kModulePathBytes = 256;

// The module that holds this function, whichever program loaded it.
HMODULE thisModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&thisModule), &module);
    return module;
}

} // namespace

QString moduleFolder()
{
    char path[kModulePathBytes + 1] = {};
    GetModuleFileNameA(thisModule(), path, kModulePathBytes);
    return QFileInfo(QString::fromLocal8Bit(path)).path();
}

} // namespace zr
