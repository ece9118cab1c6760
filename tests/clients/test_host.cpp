// SPDX-License-Identifier: MIT
// test-host [OPTION...] DLL FILE...: plays a host that asks the thumbnail server for pictures. It does not use Qt. For
// each file it prints "picture WIDTHxHEIGHT HASH" or "no picture", then what the requests have changed in its process,
// "changed FACT", and each top-level window that is not its own, "window CLASS".
//
//   --load FOLDER       loads every DLL of FOLDER before the server
//   --dpi AWARENESS     unaware, system or monitor: how its windows are scaled
//   --apartment KIND    sta, mta or none (of COM) on the thread of the requests
//   --stack BYTES       of the thread of the requests
//   --thread-each       a thread for each request that ends with it
//   --threads-at-end N  N more threads that have made requests end together with the process
//   --folder-gone       its current folder has been deleted
//   --opengl            an OpenGL context is current on the thread of the requests
//   --traps             floating-point exceptions are trapped, and it rounds upwards
//   --restricted        the thread of the requests has a restricted token of low integrity
//   --application       has a window and runs a message loop after the requests
//   --reload N          first loads the server, makes an object and frees the server, N times; prints "loaded" if it
//                       is still loaded then, and "leaked" with what it has left behind
//   --load-each N       loads and frees the server around each of N requests for each file
//   --broadcast         sends a message to all windows after the requests; prints "broadcast passed" or "hangs"
//   --cost              prints "cost FIGURE VALUE" lines, after the first and the 100th request of each file

#include "tests/clients/host_record.h"
#include "tests/clients/host_request.h"

#include <cfenv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <windows.h>

#include <objbase.h>
#include <sddl.h>
#include <tlhelp32.h>
#include <xmmintrin.h>

namespace zr::test
{
namespace
{

struct Options {
    std::string decoys;
    std::string dpi;
    std::string apartment = "sta";
    std::size_t stackBytes = 0;
    bool threadEach = false;
    bool folderGone = false;
    bool openGl = false;
    bool traps = false;
    bool restricted = false;
    bool application = false;
    bool broadcast = false;
    bool cost = false;
    int threadsAtEnd = 0;
    int reloads = 0;
    int loadsEach = 0;
    std::string server;
    std::vector<std::string> files;
};

bool parse(int argc, char** argv, Options& options)
{
    const struct {
        const char* name;
        bool Options::*flag;
    } flags[] = {{"--thread-each", &Options::threadEach}, {"--folder-gone", &Options::folderGone},
                 {"--opengl", &Options::openGl},          {"--traps", &Options::traps},
                 {"--restricted", &Options::restricted},  {"--application", &Options::application},
                 {"--broadcast", &Options::broadcast},    {"--cost", &Options::cost}};
    int i = 1;
    for (; i < argc && std::strncmp(argv[i], "--", 2) == 0; ++i) {
        const std::string name = argv[i];
        bool known = false;
        for (const auto& each : flags) {
            if (name == each.name)
                known = options.*each.flag = true;
        }
        if (known)
            continue;
        if (++i == argc)
            return false;
        if (name == "--load")
            options.decoys = argv[i];
        else if (name == "--dpi")
            options.dpi = argv[i];
        else if (name == "--apartment")
            options.apartment = argv[i];
        else if (name == "--stack")
            options.stackBytes = std::strtoul(argv[i], nullptr, 10);
        else if (name == "--threads-at-end")
            options.threadsAtEnd = std::atoi(argv[i]);
        else if (name == "--reload")
            options.reloads = std::atoi(argv[i]);
        else if (name == "--load-each")
            options.loadsEach = std::atoi(argv[i]);
        else
            return false;
    }
    if (argc - i < 2)
        return false;
    options.server = argv[i];
    options.files.assign(argv + i + 1, argv + argc);
    return true;
}

[[noreturn]] void fail(const char* step)
{
    std::printf("failed: %s, error %lu\n", step, GetLastError());
    std::fflush(stdout);
    ExitProcess(3);
}

void loadAll(const std::string& folder)
{
    WIN32_FIND_DATAA found = {};
    auto* const search = FindFirstFileA((folder + "\\*.dll").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        fail("finding the DLLs to load");
    do {
        if (!LoadLibraryA((folder + '\\' + found.cFileName).c_str()))
            fail(found.cFileName);
    } while (FindNextFileA(search, &found));
    FindClose(search);
}

void setScaling(const std::string& dpi)
{
    DPI_AWARENESS_CONTEXT context = DPI_AWARENESS_CONTEXT_UNAWARE;
    if (dpi == "system")
        context = DPI_AWARENESS_CONTEXT_SYSTEM_AWARE;
    else if (dpi == "monitor")
        context = DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE;
    using Set = BOOL WINAPI(DPI_AWARENESS_CONTEXT);
    auto* const set = reinterpret_cast<Set*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetProcessDpiAwarenessContext")));
    if (!set || !set(context))
        fail("setting the DPI awareness");
}

void loseFolder()
{
    wchar_t temporary[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temporary);
    const std::wstring folder = temporary + std::wstring(L"test-host-") + std::to_wstring(GetCurrentProcessId());
    if (!CreateDirectoryW(folder.c_str(), nullptr) || !SetCurrentDirectoryW(folder.c_str()))
        fail("entering a folder");
    // Windows may keep it until the process ends; under Wine it is gone at once.
    RemoveDirectoryW(folder.c_str());
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM word, LPARAM value)
{
    return DefWindowProcW(window, message, word, value);
}

HWND makeWindow()
{
    WNDCLASSW description = {};
    description.style = CS_OWNDC;
    description.lpfnWndProc = windowProcedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = L"TestHostWindow";
    RegisterClassW(&description);
    auto* const window = CreateWindowW(L"TestHostWindow", L"", WS_OVERLAPPEDWINDOW, 0, 0, 64, 64, nullptr, nullptr,
                                       description.hInstance, nullptr);
    if (!window)
        fail("making a window");
    return window;
}

void makeContext(HWND window)
{
    auto* const surface = GetDC(window);
    PIXELFORMATDESCRIPTOR format = {};
    format.nSize = sizeof format;
    format.nVersion = 1;
    format.dwFlags = PFD_SUPPORT_OPENGL | PFD_DRAW_TO_WINDOW | PFD_DOUBLEBUFFER;
    format.cColorBits = 32;
    if (!SetPixelFormat(surface, ChoosePixelFormat(surface, &format), &format))
        fail("choosing a pixel format");
    auto* const context = wglCreateContext(surface);
    if (!context || !wglMakeCurrent(surface, context))
        fail("making an OpenGL context");
}

void setTraps()
{
    std::fesetround(FE_UPWARD);
    constexpr unsigned kRoundUp = 0x4000;
    constexpr unsigned kTrapInvalidDivideOverflow = 0x1F80 & ~(0x0080U | 0x0200U | 0x0400U);
    _mm_setcsr(kTrapInvalidDivideOverflow | kRoundUp);
}

void restrictThread()
{
    HANDLE process = nullptr;
    HANDLE restricted = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ALL_ACCESS, &process) ||
        !CreateRestrictedToken(process, DISABLE_MAX_PRIVILEGE, 0, nullptr, 0, nullptr, 0, nullptr, &restricted))
        fail("restricting the token");
    PSID low = nullptr;
    if (!ConvertStringSidToSidA("S-1-16-4096", &low))
        fail("naming low integrity");
    TOKEN_MANDATORY_LABEL label = {{low, SE_GROUP_INTEGRITY}};
    // Some versions of Wine lack integrity levels.
    SetTokenInformation(restricted, TokenIntegrityLevel, &label, sizeof label);
    HANDLE impersonation = nullptr;
    if (!DuplicateTokenEx(restricted, TOKEN_ALL_ACCESS, nullptr, SecurityImpersonation, TokenImpersonation,
                          &impersonation) ||
        !SetThreadToken(nullptr, impersonation))
        fail("taking the restricted token");
}

// Runs it on a new thread. Size 0 means the program's default stack size.
HANDLE startThread(std::size_t stackBytes, const std::function<void()>& work)
{
    const auto start = [](void* data) -> DWORD {
        (*static_cast<const std::function<void()>*>(data))();
        return 0;
    };
    auto* const thread = CreateThread(nullptr, stackBytes, start, const_cast<std::function<void()>*>(&work),
                                      STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (!thread)
        fail("starting a thread");
    return thread;
}

void onThread(std::size_t stackBytes, const std::function<void()>& work)
{
    auto* const thread = startThread(stackBytes, work);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

void enterApartment(const std::string& kind)
{
    if (kind == "none")
        return;
    if (FAILED(CoInitializeEx(nullptr, kind == "mta" ? COINIT_MULTITHREADED : COINIT_APARTMENTTHREADED)))
        fail("starting COM");
}

// The thread's last call must end the apartment, so that one of another kind is possible.
void leaveApartment(const std::string& kind)
{
    if (kind == "none")
        return;
    CoUninitialize();
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    if (CoGetApartmentType(&type, &qualifier) != CO_E_NOTINITIALIZED)
        std::printf("changed COM: it has not ended\n");
    const auto other = kind == "mta" ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED;
    if (FAILED(CoInitializeEx(nullptr, other)))
        std::printf("changed COM: the thread cannot choose the other kind of apartment\n");
    else
        CoUninitialize();
}

void print(const HostPicture& picture)
{
    if (picture.width == 0)
        std::printf("no picture\n");
    else
        std::printf("picture %ldx%ld %08lx\n", picture.width, picture.height, picture.hash);
}

int threads()
{
    auto* const snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(snapshot);
    return count;
}

// Under Wine the calls for these two figures return zero.
std::size_t privateBytes()
{
    std::size_t sum = 0;
    MEMORY_BASIC_INFORMATION pages = {};
    const char* address = nullptr;
    while (VirtualQuery(address, &pages, sizeof pages) == sizeof pages) {
        if (pages.State == MEM_COMMIT && pages.Type == MEM_PRIVATE)
            sum += pages.RegionSize;
        address = static_cast<const char*>(pages.BaseAddress) + pages.RegionSize;
    }
    return sum;
}

int handles()
{
    constexpr std::uintptr_t kHighestHandle = 0x10000;
    int count = 0;
    DWORD flags = 0;
    for (std::uintptr_t value = 4; value < kHighestHandle; value += 4)
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0;
    return count;
}

void printCost(const std::string& after)
{
    std::printf("cost private memory %s: %zu kB\n", after.c_str(), privateBytes() / 1024);
    std::printf("cost handles %s: %d\n", after.c_str(), handles());
    std::printf("cost threads %s: %d\n", after.c_str(), threads());
}

double milliseconds()
{
    LARGE_INTEGER count = {};
    LARGE_INTEGER frequency = {};
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(count.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart);
}

// The server reads a file again if it looks older than at the last request.
void makeStale(const std::string& path, int request)
{
    auto* const file = CreateFileA(path.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                   OPEN_EXISTING, 0, nullptr);
    FILETIME time = {};
    GetSystemTimeAsFileTime(&time);
    time.dwHighDateTime -= static_cast<DWORD>(request);
    SetFileTime(file, nullptr, nullptr, &time);
    CloseHandle(file);
}

void measureCost(const Options& options)
{
    constexpr int kRequests = 100;
    printCost("before the server");
    const double start = milliseconds();
    const HostServer server(options.server);
    server.makeObject();
    const double made = milliseconds();
    std::printf("cost making the first object: %.2f ms\n", made - start);
    for (const std::string& file : options.files) {
        const double begin = milliseconds();
        print(server.request(file));
        const std::string kind = file.substr(file.find_last_of('.') + 1);
        std::printf("cost first request, %s: %.2f ms\n", kind.c_str(), milliseconds() - begin);
        printCost("after the first request, " + kind);
        for (int i = 1; i < kRequests; ++i) {
            makeStale(file, i);
            server.request(file);
        }
        printCost("after the 100th request, " + kind);
    }
}

void makeRequests(const Options& options)
{
    const auto requestAll = [&options] {
        const HostServer server(options.server);
        for (const std::string& file : options.files)
            print(server.request(file));
    };
    if (options.cost)
        measureCost(options);
    else if (options.loadsEach > 0)
        for (int i = 0; i < options.loadsEach; ++i)
            requestAll();
    else
        requestAll();
}

void requestAsGuest(const Options& options)
{
    if (options.restricted)
        restrictThread();
    enterApartment(options.apartment);
    if (options.openGl)
        makeContext(makeWindow());
    if (options.traps)
        setTraps();
    const HostRecord before = recordHost();
    const auto windowsBefore = topLevelWindows().size();
    makeRequests(options);
    for (const std::string& line : changes(before, recordHost()))
        std::printf("changed %s\n", line.c_str());
    const auto windows = topLevelWindows();
    for (std::size_t i = 0; i < windows.size() && windows.size() > windowsBefore; ++i)
        std::printf("window %s\n", windows[i].c_str());
    for (const std::string& name : messageOnlyWindows())
        std::printf("message-only %s\n", name.c_str());
    leaveApartment(options.apartment);
}

DWORD firstFreeTlsIndex()
{
    const DWORD index = TlsAlloc();
    TlsFree(index);
    return index;
}

// What a library must not leave behind when it is unloaded: TLS indexes, of which a process has some 1000, and handles,
// except the two of the loading thread that the threads library of the compiler's runtime never closes.
void reload(const Options& options)
{
    constexpr int kHandlesOfRuntime = 2;
    if (options.reloads == 0)
        return;
    // Wine's own copy leaks handles each time it is loaded.
    LoadLibraryW(L"winmm.dll");
    const auto loadAndFree = [&options] {
        const HostServer server(options.server);
        server.makeObject();
    };
    loadAndFree();
    const DWORD tlsIndex = firstFreeTlsIndex();
    const int handlesBefore = handles();
    for (int i = 1; i < options.reloads; ++i)
        loadAndFree();
    if (HostServer::isLoaded())
        std::printf("loaded\n");
    if (firstFreeTlsIndex() != tlsIndex)
        std::printf("leaked %lu TLS indexes\n", firstFreeTlsIndex() - tlsIndex);
    if (handles() > handlesBefore + kHandlesOfRuntime * options.reloads)
        std::printf("leaked %d handles\n", handles() - handlesBefore);
}

// A program that changes a system setting waits for all top-level windows of all programs.
void broadcast()
{
    constexpr UINT kPatienceMs = 3000;
    const DWORD start = GetTickCount();
    DWORD_PTR result = 0;
    const auto passed = SendMessageTimeoutW(HWND_BROADCAST, WM_SETTINGCHANGE, 0, 0, SMTO_NORMAL, kPatienceMs, &result);
    const bool isFast = GetTickCount() - start < kPatienceMs;
    std::printf("broadcast %s\n", passed && isFast ? "passed" : "hangs");
}

void runMessageLoop()
{
    PostThreadMessageW(GetCurrentThreadId(), WM_QUIT, 0, 0);
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
}

// Their pictures are in the cache by now, so all threads are soon ready.
void endWithThreads(const Options& options)
{
    auto* const end = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    auto* const ready = CreateSemaphoreW(nullptr, 0, options.threadsAtEnd, nullptr);
    const HostServer server(options.server);
    const std::function<void()> work = [&] {
        server.request(options.files.front());
        ReleaseSemaphore(ready, 1, nullptr);
        WaitForSingleObject(end, INFINITE);
    };
    for (int i = 0; i < options.threadsAtEnd; ++i)
        CloseHandle(startThread(0, work));
    for (int i = 0; i < options.threadsAtEnd; ++i)
        WaitForSingleObject(ready, INFINITE);
    std::fflush(stdout);
    SetEvent(end);
    ExitProcess(0);
}

int run(const Options& options)
{
    if (!options.dpi.empty())
        setScaling(options.dpi);
    if (!options.decoys.empty())
        loadAll(options.decoys);
    if (options.folderGone)
        loseFolder();
    if (options.application)
        makeWindow();
    reload(options);
    if (options.threadEach) {
        for (const std::string& file : options.files) {
            Options one = options;
            one.files = {file};
            onThread(options.stackBytes, [&one] { requestAsGuest(one); });
        }
    } else if (options.stackBytes > 0) {
        onThread(options.stackBytes, [&options] { requestAsGuest(options); });
    } else {
        requestAsGuest(options);
    }
    // The thread of the requests is busy or has ended here.
    if (options.broadcast)
        onThread(0, broadcast);
    if (options.application)
        runMessageLoop();
    if (options.threadsAtEnd > 0)
        endWithThreads(options);
    return 0;
}

} // namespace
} // namespace zr::test

int main(int argc, char** argv)
{
    zr::test::Options options;
    if (!zr::test::parse(argc, argv, options)) {
        std::fputs("usage: test-host [OPTION...] DLL FILE...\n", stderr);
        return 2;
    }
    return zr::test::run(options);
}
