// SPDX-License-Identifier: MIT
#include "host/platform.h"

#include "request/module_path.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <psapi.h>
#include <shellapi.h>

namespace zr
{

// The arguments of main() are in the code page, which cannot name every file.
QStringList commandLineArguments(int, char**)
{
    QStringList arguments;
    int count = 0;
    LPWSTR* const texts = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 0; i < count; ++i)
        arguments.append(QString::fromWCharArray(texts[i]));
    LocalFree(texts);
    return arguments;
}

QString fileNameFromBytes(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes);
}

Qt::CaseSensitivity caseOfNames()
{
    return Qt::CaseInsensitive;
}

bool stderrIsTerminal()
{
    return _isatty(_fileno(stderr)) != 0;
}

bool stdoutIsTerminal()
{
    return _isatty(_fileno(stdout)) != 0;
}

bool stdinIsTerminal()
{
    return _isatty(_fileno(stdin)) != 0;
}

void openStandardStreams()
{
    const std::pair<std::FILE*, const char*> streams[] = {{stdin, "r"}, {stdout, "w"}, {stderr, "w"}};
    for (const auto& [stream, mode] : streams) {
        // Where that fails, the C library drops what is written to the stream.
        if (_fileno(stream) < 0)
            Q_UNUSED(std::freopen("NUL", mode, stream))
    }
}

// The system knows where the data is.
QString homeFault()
{
    return {};
}

QString otherDataFolder()
{
    return QStringLiteral("use an account whose folder has none");
}

QString diskFullText()
{
    return qt_error_string(ERROR_DISK_FULL);
}

bool writeText(std::FILE* stream, const QString& text)
{
    auto* const handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    DWORD mode = 0;
    if (!GetConsoleMode(handle, &mode)) {
        const QByteArray bytes = text.toUtf8();
        const auto size = static_cast<std::size_t>(bytes.size());
        return std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
    }
    // Consoles take a limited number of characters at once.
    constexpr int kPieceLength = 8192;
    for (int begin = 0; begin < text.size(); begin += kPieceLength) {
        const DWORD length = static_cast<DWORD>(qMin(kPieceLength, text.size() - begin));
        DWORD written = 0;
        if (!WriteConsoleW(handle, text.utf16() + begin, length, &written, nullptr) || written != length) {
            errno = EIO;
            return false;
        }
    }
    return true;
}

void makeStdoutBinary()
{
    _setmode(_fileno(stdout), _O_BINARY);
}

void makeStdinBinary()
{
    _setmode(_fileno(stdin), _O_BINARY);
}

std::FILE* followParent()
{
    SetConsoleCtrlHandler(nullptr, TRUE);
    makeStdinBinary();
    const int channel = _dup(_fileno(stdout));
    if (channel == -1 || !std::freopen("NUL", "w", stdout))
        return nullptr;
    // The stream's mode does not count, only the descriptor's.
    _setmode(channel, _O_BINARY);
    return _fdopen(channel, "wb");
}

// The system keeps the file of a program that runs.
QString ownProgram()
{
    return modulePath();
}

qint64 ownMemory()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    return K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters)
               ? static_cast<qint64>(counters.PagefileUsage)
               : 0;
}

void leave(int status)
{
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
    std::abort();
}

} // namespace zr
