#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <functional>

namespace zr::test
{

/// What came of a run on a terminal.
struct TerminalRun {
    int status = -1; ///< as a shell tells it
    QByteArray bytes;
};

/// Runs the program with both streams on a terminal of so many columns. `outFile` takes stdout away from it.
TerminalRun runOnTerminal(const QString& program, const QStringList& arguments, const QString& folder,
                          const QProcessEnvironment& environment, int columns, const QString& outFile = {});

/// Waits until the text has come to the terminal, after what was waited for before.
using WaitFor = std::function<void(const QByteArray& text)>;

/// What `work` writes to stderr when that is a terminal of so many columns, of the kind TERM says. `work` can resize it
/// by the file descriptor of stderr.
QByteArray onTerminal(int columns, const QByteArray& term, const std::function<void(const WaitFor& waitFor)>& work);

} // namespace zr::test
