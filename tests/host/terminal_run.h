// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <functional>

namespace zr::test
{

/// The result of a run on a terminal.
struct TerminalRun {
    int status = -1; ///< as a shell reports it
    QByteArray bytes;
};

/// Runs the program with both streams on a terminal that has `columns` columns. `outFile` gets stdout instead.
TerminalRun runOnTerminal(const QString& program, const QStringList& arguments, const QString& folder,
                          const QProcessEnvironment& environment, int columns, const QString& outFile = {});

/// Waits until the terminal has received the text, after the text of the previous wait.
using WaitFor = std::function<void(const QByteArray& text)>;

/// What `work` writes to stderr when that is a terminal of `columns` columns and of the type `term`. `work` can resize
/// it through the file descriptor of stderr.
QByteArray onTerminal(int columns, const QByteArray& term, const std::function<void(const WaitFor& waitFor)>& work);

} // namespace zr::test
