// SPDX-License-Identifier: MIT
#include "tests/clients/host_record.h"

#include "tests/clients/bare_client.h"

#include <clocale>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <sstream>

#include <windows.h>

#include <objbase.h>
#include <xmmintrin.h>

namespace zr::test
{
namespace
{

// A function that some versions of Windows lack; null there.
template <typename Function>
Function* optional(const wchar_t* library, const char* name)
{
    auto* const module = LoadLibraryW(library);
    return module ? reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

class Recorder
{
public:
    template <typename Value>
    void add(const char* name, const Value& value)
    {
        std::ostringstream text;
        text << value;
        m_record.push_back({name, text.str()});
    }

    HostRecord take() { return std::move(m_record); }

private:
    HostRecord m_record;
};

void recordScaling(Recorder& record)
{
    using GetContext = DPI_AWARENESS_CONTEXT WINAPI();
    using GetAwareness = DPI_AWARENESS WINAPI(DPI_AWARENESS_CONTEXT);
    using GetProcessAwareness = HRESULT WINAPI(HANDLE, int*);
    auto* const context = optional<GetContext>(L"user32.dll", "GetThreadDpiAwarenessContext");
    auto* const awareness = optional<GetAwareness>(L"user32.dll", "GetAwarenessFromDpiAwarenessContext");
    if (context && awareness)
        record.add("DPI awareness of the thread", awareness(context()));
    int value = -1;
    if (auto* const get = optional<GetProcessAwareness>(L"shcore.dll", "GetProcessDpiAwareness"))
        get(nullptr, &value);
    record.add("DPI awareness of the process", value);
    record.add("DPI aware", IsProcessDPIAware());
}

void recordFolders(Recorder& record)
{
    wchar_t path[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, path);
    record.add("current folder", narrow(path));
    GetDllDirectoryW(MAX_PATH, path);
    record.add("folder of DLLs", narrow(path));
}

void recordFloatingPoint(Recorder& record)
{
    std::uint16_t x87 = 0;
    __asm__ volatile("fnstcw %0" : "=m"(x87));
    record.add("x87 control word", x87);
    // The status flags are results of calculations, the host's own included, not settings.
    record.add("MXCSR", _mm_getcsr() & ~unsigned{_MM_EXCEPT_MASK});
}

void recordLanguage(Recorder& record)
{
    record.add("locale of the thread", GetThreadLocale());
    record.add("language of the thread", GetThreadUILanguage());
    record.add("locale of the C library", std::setlocale(LC_ALL, nullptr));
    record.add("code page", GetACP());
    record.add("OEM code page", GetOEMCP());
    record.add("code page of the console's input", GetConsoleCP());
    record.add("code page of the console's output", GetConsoleOutputCP());
}

void recordEnvironment(Recorder& record)
{
    LPWCH const block = GetEnvironmentStringsW();
    for (const wchar_t* each = block; *each != L'\0'; each += std::wcslen(each) + 1)
        record.add("environment", narrow(each));
    FreeEnvironmentStringsW(block);
    record.add("end of the environment", "");
    // The C library has its own copy.
    for (char** each = _environ; each && *each; ++each)
        record.add("environment of the C library", *each);
    record.add("end of that", "");
}

void recordScheduling(Recorder& record)
{
    using QueryTimer = LONG WINAPI(ULONG*, ULONG*, ULONG*);
    record.add("priority of the process", GetPriorityClass(GetCurrentProcess()));
    record.add("priority of the thread", GetThreadPriority(GetCurrentThread()));
    ULONG coarsest = 0;
    ULONG finest = 0;
    ULONG current = 0;
    if (auto* const query = optional<QueryTimer>(L"ntdll.dll", "NtQueryTimerResolution"))
        query(&coarsest, &finest, &current);
    record.add("timer resolution", current);
}

void recordHandlers(Recorder& record)
{
    auto* const filter = SetUnhandledExceptionFilter(nullptr);
    SetUnhandledExceptionFilter(filter);
    record.add("filter of unhandled exceptions", reinterpret_cast<void*>(filter));
    record.add("terminate handler", reinterpret_cast<void*>(std::get_terminate()));
    for (const int number : {SIGABRT, SIGFPE, SIGILL, SIGINT, SIGSEGV, SIGTERM}) {
        auto* const handler = std::signal(number, SIG_DFL);
        std::signal(number, handler);
        record.add("signal handler", reinterpret_cast<void*>(handler));
    }
    record.add("error mode of the process", GetErrorMode());
    record.add("error mode of the thread", GetThreadErrorMode());
}

void recordCom(Recorder& record)
{
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    record.add("COM", CoGetApartmentType(&type, &qualifier));
    record.add("kind of apartment", type);
    record.add("kind of that kind", qualifier);
}

void recordInput(Recorder& record)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetCurrentThreadId(), &info);
    record.add("active window", reinterpret_cast<void*>(info.hwndActive));
    record.add("window with the focus", reinterpret_cast<void*>(info.hwndFocus));
    record.add("window with the mouse", reinterpret_cast<void*>(info.hwndCapture));
    record.add("clipboard viewer", reinterpret_cast<void*>(GetClipboardViewer()));
    record.add("owner of the clipboard", reinterpret_cast<void*>(GetClipboardOwner()));
}

void recordOpenGl(Recorder& record)
{
    record.add("OpenGL context", reinterpret_cast<void*>(wglGetCurrentContext()));
    record.add("surface of the OpenGL context", reinterpret_cast<void*>(wglGetCurrentDC()));
}

std::string className(HWND window)
{
    wchar_t name[256] = {};
    GetClassNameW(window, name, 256);
    return narrow(name);
}

bool isOurs(HWND window)
{
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId();
}

} // namespace

HostRecord recordHost()
{
    Recorder record;
    recordFloatingPoint(record);
    recordScaling(record);
    recordFolders(record);
    recordLanguage(record);
    recordEnvironment(record);
    recordScheduling(record);
    recordHandlers(record);
    recordCom(record);
    recordInput(record);
    recordOpenGl(record);
    return record.take();
}

std::vector<std::string> changes(const HostRecord& before, const HostRecord& after)
{
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < before.size() && i < after.size(); ++i) {
        if (before[i].name != after[i].name || before[i].value != after[i].value) {
            lines.push_back(before[i].name + ": " + before[i].value + " -> " + after[i].value);
            if (before[i].name != after[i].name)
                break;
        }
    }
    if (before.size() != after.size() && lines.empty())
        lines.emplace_back("other facts");
    return lines;
}

std::vector<std::string> topLevelWindows()
{
    std::vector<std::string> names;
    const auto visit = [](HWND window, LPARAM data) -> BOOL {
        if (isOurs(window))
            reinterpret_cast<std::vector<std::string>*>(data)->push_back(className(window));
        return TRUE;
    };
    EnumWindows(visit, reinterpret_cast<LPARAM>(&names));
    return names;
}

std::vector<std::string> messageOnlyWindows()
{
    std::vector<std::string> names;
    HWND window = nullptr;
    while ((window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr))) {
        if (isOurs(window))
            names.push_back(className(window));
    }
    return names;
}

} // namespace zr::test
