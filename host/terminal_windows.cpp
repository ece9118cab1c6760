// SPDX-License-Identifier: MIT
#include "host/terminal.h"

#include <windows.h>

namespace zr
{
namespace
{

constexpr int kUsualColumns = 80;

DWORD formerMode = 0;
bool isModeSet = false;

} // namespace

bool startControlSequences()
{
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    isModeSet = GetConsoleMode(console, &formerMode) != 0 &&
                SetConsoleMode(console, formerMode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
    return isModeSet;
}

// The mode is the console's and outlives the program.
void endControlSequences()
{
    if (isModeSet)
        SetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), formerMode);
    isModeSet = false;
}

int terminalColumns()
{
    CONSOLE_SCREEN_BUFFER_INFO info{};
    const bool isTold = GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) != 0;
    return isTold ? info.srWindow.Right - info.srWindow.Left + 1 : kUsualColumns;
}

} // namespace zr
