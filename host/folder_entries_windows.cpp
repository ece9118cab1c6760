// SPDX-License-Identifier: MIT
#include "host/folder_entries.h"

#include <QDir>
#include <QFileInfo>

#include <windows.h>

namespace zr
{
namespace
{

// In the form of paths that allows any length.
QString searchPattern(const QString& folder)
{
    const QString path = QDir::toNativeSeparators(QFileInfo(folder).absoluteFilePath());
    const QString prefix =
        path.startsWith(QLatin1String("\\\\")) ? QStringLiteral("\\\\?\\UNC") : QStringLiteral("\\\\?\\");
    return prefix + (path.startsWith(QLatin1String("\\\\")) ? path.mid(1) : path) +
           (path.endsWith(QLatin1Char('\\')) ? QStringLiteral("*") : QStringLiteral("\\*"));
}

// Junctions and links lead to folders that are listed elsewhere, or back to one above. Folders whose files are in the
// cloud look similar.
bool isLink(const WIN32_FIND_DATAW& found)
{
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) && IsReparseTagNameSurrogate(found.dwReserved0);
}

} // namespace

QString readFolder(const QString& path, std::vector<FolderEntry>& entries)
{
    WIN32_FIND_DATAW found = {};
    auto* const search = FindFirstFileExW(reinterpret_cast<LPCWSTR>(searchPattern(path).utf16()), FindExInfoBasic,
                                          &found, FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_FILE_NOT_FOUND ? QString() : qt_error_string();
    do {
        const QString name = QString::fromWCharArray(found.cFileName);
        const bool isFolder = found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
        const bool isHidden = found.dwFileAttributes & FILE_ATTRIBUTE_HIDDEN;
        if (name != QLatin1String(".") && name != QLatin1String("..") && !isHidden && !(isFolder && isLink(found)))
            entries.push_back({name, isFolder, true});
    } while (FindNextFileW(search, &found));
    const DWORD error = GetLastError();
    FindClose(search);
    return error == ERROR_NO_MORE_FILES ? QString() : qt_error_string(static_cast<int>(error));
}

} // namespace zr
