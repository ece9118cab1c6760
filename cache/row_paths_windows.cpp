// SPDX-License-Identifier: MIT
#include "cache/row_paths.h"

#include <QDir>

#include <windows.h>

namespace zr
{
namespace
{

// ERROR_SUCCESS, or why the system does not find the file.
DWORD lookUp(const QString& nativePath)
{
    const DWORD attributes = GetFileAttributesW(reinterpret_cast<LPCWSTR>(nativePath.utf16()));
    return attributes == INVALID_FILE_ATTRIBUTES ? GetLastError() : ERROR_SUCCESS;
}

bool beginsWithDrive(const QString& nativePath)
{
    return nativePath.size() > 2 && nativePath.at(1) == QLatin1Char(':') && nativePath.at(2) == QLatin1Char('\\');
}

} // namespace

// A drive that is away, such as a memory stick, gives the same error as a missing folder; a share has errors of its
// own.
bool isGone(const QString& path)
{
    const QString native = QDir::toNativeSeparators(path);
    if (native.contains(QChar(QChar::Null)))
        return false;
    // Takes paths of any length.
    const bool hasDrive = beginsWithDrive(native);
    const DWORD error =
        lookUp(hasDrive ? QLatin1String("\\\\?\\") + QDir::cleanPath(native).replace('/', '\\') : native);
    if (error == ERROR_PATH_NOT_FOUND && hasDrive)
        return lookUp(native.left(3)) == ERROR_SUCCESS;
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

QString comparableName(const QString& name)
{
    return name.toCaseFolded();
}

} // namespace zr
