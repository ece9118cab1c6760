// SPDX-License-Identifier: MIT
#include "host/interruption.h"

#include <atomic>
#include <csignal>

#include <windows.h>

namespace zr
{
namespace
{

constexpr int kStatusOfSignals = 128;

std::atomic<int> requestedBy{0};

// Called on a thread of its own.
BOOL WINAPI note(DWORD event)
{
    const bool isKey = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    if (requestedBy.exchange(isKey ? SIGINT : SIGTERM) != 0)
        return FALSE;
    // The process ends when this returns; Windows waits some seconds at most.
    if (!isKey)
        Sleep(INFINITE);
    return TRUE;
}

} // namespace

Interruption::Interruption()
{
    requestedBy = 0;
    SetConsoleCtrlHandler(note, TRUE);
}

Interruption::~Interruption()
{
    SetConsoleCtrlHandler(note, FALSE);
}

bool Interruption::isRequested() const
{
    return requestedBy != 0;
}

int Interruption::status() const
{
    return kStatusOfSignals + requestedBy;
}

} // namespace zr
