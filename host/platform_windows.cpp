// SPDX-License-Identifier: MIT
#include "host/platform.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

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

bool stderrIsTerminal()
{
    return _isatty(_fileno(stderr)) != 0;
}

bool stdoutIsTerminal()
{
    return _isatty(_fileno(stdout)) != 0;
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
        return std::fputs(bytes.constData(), stream) >= 0 && std::fflush(stream) == 0;
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

void leave(int status)
{
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
    std::abort();
}

} // namespace zr
