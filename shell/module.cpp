// SPDX-License-Identifier: MIT
#include "shell/module.h"

#include <atomic>

#include <windows.h>

namespace zr
{
namespace
{

// Needs no initialisation at load time.
std::atomic<long> lockCount{0};

} // namespace

void ModuleLock::add()
{
    ++lockCount;
}

void ModuleLock::remove()
{
    --lockCount;
}

bool ModuleLock::isHeld()
{
    return lockCount != 0;
}

void keepModuleLoaded()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&keepModuleLoaded), &module);
}

} // namespace zr
