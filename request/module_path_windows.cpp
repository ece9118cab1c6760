// SPDX-License-Identifier: MIT
#include "request/module_path.h"
#include "request/this_module.h"

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

QString narrowPath()
{
    char path[kNarrowPathBytes + 1] = {};
    GetModuleFileNameA(thisModule(), path, kNarrowPathBytes);
    return QString::fromLocal8Bit(path);
}

} // namespace

HINSTANCE__* thisModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&thisModule), &module);
    return module;
}

QString modulePath()
{
    std::wstring path(kMaxPathLength, L'\0');
    path.resize(GetModuleFileNameW(thisModule(), path.data(), kMaxPathLength));
    return QString::fromStdWString(path);
}

// Qt's library paths have always been given the short form in the code page. It is not a file when the path is too long
// or has letters outside the code page.
QString moduleFolder()
{
    const QFileInfo narrow(narrowPath());
    return narrow.isFile() ? narrow.path() : QFileInfo(modulePath()).path();
}

} // namespace zr
