// SPDX-License-Identifier: MIT
#include "host/console.h"

#include "host/platform.h"

#include <cerrno>

namespace zr
{
namespace
{

QString fault;
bool isGone = false;

// Uses errno, so it has to come right after the failed call.
void noteFault()
{
    isGone = isGone || errno == EPIPE;
    if (fault.isEmpty())
        fault = qt_error_string(errno);
}

} // namespace

void printText(std::FILE* stream, const QString& text)
{
    if (!writeText(stream, text) && stream == stdout)
        noteFault();
}

void printLine(std::FILE* stream, const QString& text)
{
    printText(stream, text + QLatin1Char('\n'));
}

QString writeStdout(const QByteArray& bytes)
{
    makeStdoutBinary();
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return {};
    return qt_error_string(errno);
}

QString stdoutFault()
{
    return fault;
}

bool stdoutIsGone()
{
    return isGone;
}

} // namespace zr
