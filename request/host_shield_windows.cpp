// SPDX-License-Identifier: MIT
// The system functions that Qt must not call inside somebody else's process, and their replacements.
//
// Qt is linked statically, and the linker redirects its calls of the functions that ZR_REPLACE and ZR_REPLACE_IMPORT
// name to the ones here (its option --wrap; CMakeLists.txt reads the names from this file). So nothing in the host has
// to be changed and restored.

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include <windows.h>

#include <objbase.h>
#include <process.h>

// Names the function that is called in place of `name`, and the original.
#define ZR_REPLACE(name) __wrap_##name
#define ZR_ORIGINAL(name) __real_##name
// The same for a function of a DLL, which is called through a pointer in the import table.
#define ZR_REPLACE_IMPORT(name, type, replacement)                                                                     \
    extern type* const __wrap___imp_##name;                                                                            \
    type* const __wrap___imp_##name = replacement
#define ZR_ORIGINAL_IMPORT(name) __real___imp_##name

namespace
{

// What the user, a developer or the host itself has set for Qt is meant for other programs. Of some 70 variables
//   QT_QPA_PLATFORM, QT_QPA_PLATFORM_PLUGIN_PATH: any platform but "windows" ends the process after a message box
//   QT_FATAL_WARNINGS, QT_FATAL_CRITICALS, QT_NO_CPU_FEATURE: end the process
//   QT_LOAD_TESTABILITY, QT_QPA_GENERIC_PLUGINS, QT_PLUGIN_PATH: load libraries into it
//   QT_LOGGING_*, QT_MESSAGE_PATTERN, QT_DEBUG_PLUGINS, QT_QPA_VERBOSE: write to its output
//   QT_OPENGL, QT_OPENGL_DLL, QT_OPENGL_BUGLIST: draw models with another driver
//   QT_SCALE_FACTOR, QT_FONT_DPI, QT_AUTO_SCREEN_SCALE_FACTOR and their kin: change sizes
//   QT_HASH_SEED, QT_STYLE_OVERRIDE, QT_IM_MODULE, QT_DEFAULT_THREAD_STACK_SIZE and others: change how Qt works
// The prefix covers all of them. Names of variables are case-insensitive on Windows.
constexpr std::size_t kPrefixLength = 3;

bool isForQt(const char* name)
{
    return _strnicmp(name, "QT_", kPrefixLength) == 0;
}

bool isForQt(const wchar_t* name)
{
    return _wcsnicmp(name, L"QT_", kPrefixLength) == 0;
}

// Set by the DLL's DllMain(), before the C runtime ends what it has started.
bool processEnds = false;

using WideGetenv = errno_t __cdecl(std::size_t*, wchar_t*, std::size_t, const wchar_t*);

} // namespace

extern "C" {

char* ZR_ORIGINAL(getenv)(const char* name);
extern WideGetenv* const ZR_ORIGINAL_IMPORT(_wgetenv_s);

char* ZR_REPLACE(getenv)(const char* name)
{
    return isForQt(name) ? nullptr : ZR_ORIGINAL(getenv)(name);
}

static errno_t wideGetenv(std::size_t* length, wchar_t* value, std::size_t size, const wchar_t* name)
{
    if (!isForQt(name))
        return ZR_ORIGINAL_IMPORT(_wgetenv_s)(length, value, size, name);
    *length = 0;
    return 0;
}
ZR_REPLACE_IMPORT(_wgetenv_s, WideGetenv, wideGetenv);

// Qt initialises OLE on the thread of the first request and never uninitialises it, so that thread could no longer end
// its own COM and choose another kind of apartment. Only the clipboard and drag and drop need OLE.
static HRESULT WINAPI startNoOle(void*)
{
    return S_OK;
}
ZR_REPLACE_IMPORT(OleInitialize, decltype(OleInitialize), startNoOle);

// QWindowsClipboard::registerViewer(): each change of the clipboard would send a message to the thread of the first
// request, which may never look at its messages.
void ZR_REPLACE(_ZN17QWindowsClipboard14registerViewerEv)() {}

// Qt wants to repaint its windows when the display wakes up. There are none, and that thread would get messages, too.
static HPOWERNOTIFY WINAPI notifyOfNothing(HANDLE, const GUID*, DWORD)
{
    return nullptr;
}
ZR_REPLACE_IMPORT(RegisterPowerSettingNotification, decltype(RegisterPowerSettingNotification), notifyOfNothing);

// A program that sends a message to all windows waits for the thread of each; those of the server's windows may never
// look at their messages. These windows are only there to make OpenGL contexts and are never visible, so they become
// message-only. Some live as long as the process.
extern decltype(CreateWindowExW)* const ZR_ORIGINAL_IMPORT(CreateWindowExW);
static HWND WINAPI createWindow(DWORD extendedStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y,
                                int width, int height, HWND parent, HMENU menu, HINSTANCE instance, void* parameter)
{
    return ZR_ORIGINAL_IMPORT(CreateWindowExW)(extendedStyle, className, title, style, x, y, width, height,
                                               parent ? parent : HWND_MESSAGE, menu, instance, parameter);
}
ZR_REPLACE_IMPORT(CreateWindowExW, decltype(CreateWindowExW), createWindow);

// QSystemLibrary::load(): Qt uses Direct3D to look for graphics cards and choose a screen for an OpenGL window. The
// server's windows are on no screen, and Direct3D is a lot to load into a host.
HINSTANCE ZR_ORIGINAL(_ZN14QSystemLibrary4loadEPKwb)(const wchar_t* name, bool onlyOfTheSystem);
HINSTANCE ZR_REPLACE(_ZN14QSystemLibrary4loadEPKwb)(const wchar_t* name, bool onlyOfTheSystem)
{
    return std::wcscmp(name, L"d3d9") == 0 ? nullptr
                                           : ZR_ORIGINAL(_ZN14QSystemLibrary4loadEPKwb)(name, onlyOfTheSystem);
}

// Qt would show a message box with the reason why it ends the process; there may be nobody to close it.
static int WINAPI showNothing(HWND, LPCWSTR, LPCWSTR, UINT)
{
    return IDOK;
}
ZR_REPLACE_IMPORT(MessageBoxW, decltype(MessageBoxW), showNothing);

// When a process ends, Windows has stopped all threads but one, wherever they were. That one would destroy Qt's static
// objects and could wait for ever for a lock that a stopped thread holds. Windows frees everything anyway. A DLL that
// is unloaded while the process goes on is a different case.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* isProcessEnd)
{
    if (reason == DLL_PROCESS_DETACH && isProcessEnd)
        processEnds = true;
    return TRUE;
}

int ZR_ORIGINAL(_execute_onexit_table)(_onexit_table_t* table);
int ZR_REPLACE(_execute_onexit_table)(_onexit_table_t* table)
{
    return processEnds ? 0 : ZR_ORIGINAL(_execute_onexit_table)(table);
}

} // extern "C"
