#include "host/platform.h"
#include "host/terminal.h"

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

// The variable is the shell's, as of its last command; serial lines tell nothing else.
int terminalColumns()
{
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    const int told = qEnvironmentVariableIntValue("COLUMNS");
    return told > 0 ? told : kUsualColumns;
}

} // namespace zr
