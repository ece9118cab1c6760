// SPDX-License-Identifier: MIT
#pragma once

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

/// Runs the program in `folder` until it ends; the test fails when it crashes or takes longer than two minutes.
ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& folder,
                      const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());

} // namespace zr::test
