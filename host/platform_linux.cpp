// SPDX-License-Identifier: MIT
#include "host/platform.h"

#include "host/name_codec.h"
#include "request/module_path.h"

#include <QFile>

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

namespace zr
{

QStringList commandLineArguments(int argc, char** argv)
{
    // Qt's application object does this too, but only with the first request.
    std::setlocale(LC_ALL, "");
    keepNamesThatAreNotText();
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    return arguments;
}

QString fileNameFromBytes(const QByteArray& bytes)
{
    return QFile::decodeName(bytes);
}

Qt::CaseSensitivity caseOfNames()
{
    return Qt::CaseSensitive;
}

bool stderrIsTerminal()
{
    return isatty(STDERR_FILENO) == 1;
}

bool stdoutIsTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

bool stdinIsTerminal()
{
    return isatty(STDIN_FILENO) == 1;
}

void openStandardStreams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // open() returns the lowest free number.
        if (fcntl(descriptor, F_GETFD) == -1 && open("/dev/null", O_RDWR) != descriptor)
            std::_Exit(EXIT_FAILURE);
    }
}

QString homeFault()
{
    if (!qEnvironmentVariableIsEmpty("HOME") || !qEnvironmentVariableIsEmpty("XDG_DATA_HOME"))
        return {};
    const passwd* const user = getpwuid(getuid());
    // Services that need no home folder have the root folder as theirs.
    const bool hasHome = user && user->pw_dir && *user->pw_dir && std::strcmp(user->pw_dir, "/") != 0;
    if (hasHome && qputenv("HOME", user->pw_dir))
        return {};
    return QStringLiteral("you have no home folder for the cache: set HOME or XDG_DATA_HOME");
}

QString otherDataFolder()
{
    return QStringLiteral("set XDG_DATA_HOME to a folder without one");
}

QString diskFullText()
{
    return qt_error_string(ENOSPC);
}

bool writeText(std::FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    const auto size = static_cast<std::size_t>(bytes.size());
    return std::fwrite(bytes.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

void makeStdoutBinary() {}

void makeStdinBinary() {}

std::FILE* followParent()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, SIG_IGN);
    const int channel = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (channel == -1 || !std::freopen("/dev/null", "w", stdout))
        return nullptr;
    return fdopen(channel, "w");
}

QString ownProgram()
{
    const QString path = modulePath();
    return QFile::exists(path) ? path : QStringLiteral("/proc/self/exe");
}

qint64 ownMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return 0;
    // In pages: all, resident, shared and so on.
    return file.read(256).split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

void leave(int status)
{
    std::fflush(nullptr);
    std::_Exit(status);
}

} // namespace zr
