// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace zr::test
{

/// The result of running a program.
struct ProgramRun {
    int status = -1;
    QStringList out; ///< lines of stdout, without empty ones
    QStringList err;
};

/// Starts the program that is set. Wine now and then refuses to start a program, mostly one that has just ended, so
/// this tries up to ten times; the test fails when no attempt succeeds.
void startProgram(QProcess& process);
void startProgram(QProcess& process, const QString& program, const QStringList& arguments);

/// Runs the program in `folder` until it ends; the test fails when it crashes or takes longer than two minutes.
ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& folder,
                      const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());

} // namespace zr::test
