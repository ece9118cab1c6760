#include "shell/windows/module.h"

#include <atomic>

namespace zr
{
namespace
{

// Needs no initialisation at load time.
std::atomic<long> lockCount{0};

constexpr std::size_t kMaxPathLength = 32768;

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

HMODULE serverModule()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&serverModule), &module);
    return module;
}

std::wstring serverModulePath()
{
    std::wstring path(MAX_PATH, L'\0');
    while (path.size() <= kMaxPathLength) {
        const DWORD length = GetModuleFileNameW(serverModule(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
    return {};
}

void keepModuleLoaded()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&serverModule), &module);
}

} // namespace zr
