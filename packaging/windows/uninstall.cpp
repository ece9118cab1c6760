// SPDX-License-Identifier: MIT
// uninstall.exe OPTIONS...: runs the uninstaller beside it, uninstaller.exe, waits for it and ends with its status, so
// that a script knows when everything is gone and whether it is. Uninstallers of NSIS do not: they go on in a copy of
// themselves, and the started process ends at once. Here the uninstaller runs in place. What it cannot do, removing its
// own program and folder, this program does after it has ended. The uninstaller moves this program out of the folder.

#include <string>
#include <vector>

#include <windows.h>

#include <shellapi.h>

namespace
{

// Those of the installer, see docs/windows.md.
constexpr int kFailed = 2;
constexpr int kRestartNeeded = 3010;

constexpr wchar_t kUninstaller[] = L"\\uninstaller.exe";
// The option that makes an uninstaller of NSIS run in place, with the folder to work on. It has to be the last one.
constexpr wchar_t kStay[] = L" _?=";
// The option that would make it take the rest of its command line for the folder.
constexpr wchar_t kFolder[] = L" /D=";
// An installation exists exactly when its list does.
constexpr wchar_t kList[] = L"\\files.txt";

// A virus scanner may hold a program that has just ended.
constexpr int kAttempts = 30;
constexpr DWORD kPauseMs = 100;

constexpr DWORD kMaxPath = 32768;

std::wstring ownFolder()
{
    std::vector<wchar_t> path(kMaxPath);
    const std::wstring program(path.data(), GetModuleFileNameW(nullptr, path.data(), kMaxPath));
    return program.substr(0, program.find_last_of(L'\\'));
}

// All that follows the program's own name, as it was written.
std::wstring ownOptions()
{
    std::wstring line = GetCommandLineW();
    const std::size_t end = line.front() == L'"' ? line.find(L'"', 1) : line.find_first_of(L" \t");
    line.erase(0, end == std::wstring::npos ? end : end + 1);
    return line.substr(0, line.find(kStay));
}

bool isSilent()
{
    int count = 0;
    LPWSTR* const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    bool found = false;
    for (int i = 1; i < count; ++i)
        found |= std::wstring(arguments[i]) == L"/S";
    LocalFree(arguments);
    return found;
}

// In a window, or on the error output of a silent run.
int fail(const std::wstring& text)
{
    if (!isSilent()) {
        MessageBoxW(nullptr, text.c_str(), L"ZRThumbnail", MB_OK | MB_ICONSTOP);
        return kFailed;
    }
    const std::wstring line = text + L"\r\n";
    std::vector<char> bytes(line.size() * 4);
    const int size = WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_ERROR_HANDLE), bytes.data(), static_cast<DWORD>(size), &written, nullptr);
    return kFailed;
}

bool exists(const std::wstring& path)
{
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool isLink(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

// False when it did not start, for which there is a GetLastError(); else `status` is what it ended with.
bool runUninstaller(const std::wstring& folder, DWORD* status)
{
    const std::wstring program = folder + kUninstaller;
    std::wstring line = L'"' + program + L"\" " + ownOptions() + kStay + folder;
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
        return false;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}

// False when that has to wait for the next start of Windows.
bool removeRest(const std::wstring& folder)
{
    // A folder that is some process's current one cannot be removed.
    wchar_t windows[MAX_PATH] = {};
    GetWindowsDirectoryW(windows, MAX_PATH);
    SetCurrentDirectoryW(windows);
    const std::wstring program = folder + kUninstaller;
    for (int i = 0; i < kAttempts && exists(program) && !DeleteFileW(program.c_str()); ++i)
        Sleep(kPauseMs);
    const bool isGone = !exists(program);
    if (!isGone)
        MoveFileExW(program.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    // Other people's files and their links stay.
    if (!isLink(folder) && !RemoveDirectoryW(folder.c_str()) && !isGone)
        MoveFileExW(folder.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
    return isGone;
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    // A terminal is reached only on request by a program that has windows.
    if (isSilent() && !GetStdHandle(STD_ERROR_HANDLE))
        AttachConsole(ATTACH_PARENT_PROCESS);
    const std::wstring folder = ownFolder();
    if (!exists(folder + kUninstaller))
        return fail(folder + L" holds no installation.");
    if (ownOptions().find(kFolder) != std::wstring::npos)
        return fail(L"There is no option /D= when uninstalling: start the uninstall.exe in the folder itself.");
    DWORD status = kFailed;
    if (!runUninstaller(folder, &status))
        return fail(L"The uninstaller does not start (error " + std::to_wstring(GetLastError()) + L").");
    if (status != 0 && status != kRestartNeeded)
        return static_cast<int>(status);
    if (exists(folder + kList))
        return kFailed;
    return removeRest(folder) ? static_cast<int>(status) : kRestartNeeded;
}
