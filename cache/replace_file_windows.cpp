// SPDX-License-Identifier: MIT
#include "cache/replace_file.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <windows.h>

namespace zr
{
namespace
{

// A file that is open elsewhere cannot be replaced; the browser's other processes read a picture for a few
// milliseconds, and so do virus scanners.
constexpr int kAttempts = 20;
constexpr DWORD kPauseMs = 10;

bool isInUse(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
}

// Processes that make the same picture at the same time should not replace it: a file that is being replaced may be
// missing for a moment, just when another of them looks for its picture. Only the time is updated, so the result is the
// same.
bool keepsIdenticalFile(const QString& from, const QString& to)
{
    QFile older(to);
    QFile newer(from);
    if (!older.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) || !newer.open(QIODevice::ReadOnly) ||
        older.size() != newer.size() || older.readAll() != newer.readAll())
        return false;
    older.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
    return newer.remove();
}

} // namespace

bool replaceFile(const QString& from, const QString& to)
{
    if (keepsIdenticalFile(from, to))
        return true;
    const QString nativeFrom = QDir::toNativeSeparators(from);
    const QString nativeTo = QDir::toNativeSeparators(to);
    for (int attempt = 1;; ++attempt) {
        if (MoveFileExW(reinterpret_cast<LPCWSTR>(nativeFrom.utf16()), reinterpret_cast<LPCWSTR>(nativeTo.utf16()),
                        MOVEFILE_REPLACE_EXISTING))
            return true;
        if (attempt == kAttempts || !isInUse(GetLastError()))
            return false;
        Sleep(kPauseMs);
    }
}

} // namespace zr
