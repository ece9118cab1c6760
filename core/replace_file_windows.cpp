#include "core/replace_file.h"

#include <QDir>

#include <windows.h>

namespace zr
{
namespace
{

// A file that somebody reads cannot be replaced; the browser's other processes read a picture for a few milliseconds,
// and so do virus scanners.
constexpr int kAttempts = 20;
constexpr DWORD kPauseMs = 10;

bool isInUse(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
}

} // namespace

bool replaceFile(const QString& from, const QString& to)
{
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
