// SPDX-License-Identifier: MIT
#include "host/terminal.h"

#include "host/platform.h"

#include <QByteArray>

#include <sys/ioctl.h>
#include <unistd.h>

namespace zr
{
namespace
{

constexpr int kUsualColumns = 80;

} // namespace

bool startControlSequences()
{
    const QByteArray kind = qgetenv("TERM");
    return stderrIsTerminal() && !kind.isEmpty() && kind != "dumb";
}

void endControlSequences() {}

// The variable is from the shell's last command; on serial lines there is nothing else.
int terminalColumns()
{
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const int columns = qEnvironmentVariableIntValue("COLUMNS");
    return columns > 0 ? columns : kUsualColumns;
}

} // namespace zr
