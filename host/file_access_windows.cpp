// SPDX-License-Identifier: MIT
#include "host/file_access.h"

#include <QDir>
#include <QFileInfo>

#include <windows.h>

namespace zr
{
namespace
{

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// The path as the system takes it, whatever its length.
QString nativePath(const QString& path)
{
    const QString native = QDir::toNativeSeparators(path);
    if (native.startsWith(QLatin1String("\\\\?\\")) || native.size() < MAX_PATH)
        return native;
    return native.startsWith(QLatin1String("\\\\")) ? QLatin1String("\\\\?\\UNC") + native.mid(1)
                                                    : QLatin1String("\\\\?\\") + native;
}

// ERROR_SUCCESS, or why the file cannot be opened.
DWORD tryToOpen(const QString& path, DWORD access)
{
    const QString native = nativePath(path);
    HANDLE const file = CreateFileW(reinterpret_cast<LPCWSTR>(native.utf16()), access, kShareAll, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return GetLastError();
    CloseHandle(file);
    return ERROR_SUCCESS;
}

QString openFault(DWORD error, bool isLink)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
        return isLink ? QLatin1String(reason::kLooseLink) : QLatin1String(reason::kNoSuchFile);
    case ERROR_ACCESS_DENIED:
        return QLatin1String(reason::kNotPermitted);
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return QStringLiteral("the file cannot be opened: another program keeps it to itself");
    default:
        return QStringLiteral("the file cannot be opened: ") + qt_error_string(static_cast<int>(error)).trimmed();
    }
}

} // namespace

QString sourceFault(const QString& path)
{
    if (path.contains(QChar(QChar::Null)))
        return QLatin1String(reason::kNoSuchFile);
    const DWORD attributes = GetFileAttributesW(reinterpret_cast<LPCWSTR>(nativePath(path).utf16()));
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return openFault(GetLastError(), false);
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        return QLatin1String(reason::kIsFolder);
    const DWORD error = tryToOpen(path, GENERIC_READ);
    if (error != ERROR_SUCCESS)
        return openFault(error, attributes & FILE_ATTRIBUTE_REPARSE_POINT);
    return QFileInfo(path).isFile() ? QString() : QLatin1String(reason::kNotRegular);
}

QString writeFault(const QString& path)
{
    const DWORD error = tryToOpen(path, QFileInfo(path).isDir() ? FILE_ADD_FILE : GENERIC_WRITE);
    switch (error) {
    case ERROR_SUCCESS:
        return QString();
    case ERROR_ACCESS_DENIED:
        return QLatin1String(reason::kWriteNotPermitted);
    case ERROR_SHARING_VIOLATION:
        return QStringLiteral("another program keeps it to itself");
    default:
        return qt_error_string(static_cast<int>(error)).trimmed();
    }
}

bool takesName(const QString& folder, const QString& name)
{
    wchar_t volume[MAX_PATH] = {};
    DWORD maxSize = 0;
    const QString native = nativePath(folder);
    if (!GetVolumePathNameW(reinterpret_cast<LPCWSTR>(native.utf16()), volume, MAX_PATH) ||
        !GetVolumeInformationW(volume, nullptr, 0, nullptr, &maxSize, nullptr, nullptr, 0))
        return true;
    return static_cast<DWORD>(name.size()) <= maxSize;
}

} // namespace zr
