// SPDX-License-Identifier: MIT
#include "host/log_turn.h"

#include "core/data_location.h"

#include <QDir>

#include <windows.h>

namespace zr
{
namespace
{

// Two bytes far beyond the end of the log are locked, which keeps nobody from writing its lines. Who wants to be alone
// holds the gate while it waits, so that no others come.
constexpr DWORD kGate = 0;
constexpr DWORD kTurn = 1;
constexpr DWORD kFarAway = 0x40000000; // the high part of their offsets

OVERLAPPED placeOf(DWORD byte)
{
    OVERLAPPED place = {};
    place.Offset = byte;
    place.OffsetHigh = kFarAway;
    return place;
}

void lock(HANDLE log, DWORD byte, DWORD flags)
{
    OVERLAPPED place = placeOf(byte);
    LockFileEx(log, flags, 0, 1, 0, &place);
}

void unlock(HANDLE log, DWORD byte)
{
    OVERLAPPED place = placeOf(byte);
    UnlockFileEx(log, 0, 1, 0, &place);
}

HANDLE openLog()
{
    const QString path = QDir::toNativeSeparators(defaultLogPath());
    return CreateFileW(reinterpret_cast<LPCWSTR>(path.utf16()), GENERIC_READ,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

LogTurn::LogTurn(Company company) : m_log(openLog())
{
    if (m_log == INVALID_HANDLE_VALUE)
        return;
    lock(m_log, kGate, LOCKFILE_EXCLUSIVE_LOCK);
    lock(m_log, kTurn, company == Company::None ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    unlock(m_log, kGate);
}

// Closing the file ends the locks.
LogTurn::~LogTurn()
{
    if (m_log != INVALID_HANDLE_VALUE) {
        unlock(m_log, kTurn);
        CloseHandle(m_log);
    }
}

} // namespace zr
