// SPDX-License-Identifier: MIT
#include "tests/support/program_run.h"

#include <QThread>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 120000;
constexpr int kStarts = 10;
constexpr int kPauseMs = 500;

// Our programs write UTF-8 to pipes on Windows, and the locale's encoding elsewhere: UTF-8 in tests.
QStringList linesOf(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes).remove('\r').split('\n', Qt::SkipEmptyParts);
}

} // namespace

void startProgram(QProcess& process)
{
    for (int i = 0; i < kStarts; ++i) {
        process.start();
        if (process.waitForStarted(kTimeoutMs) || process.error() != QProcess::FailedToStart)
            return;
        QThread::msleep(kPauseMs);
    }
    ADD_FAILURE() << process.program().toStdString() << ": " << process.errorString().toStdString();
}

void startProgram(QProcess& process, const QString& program, const QStringList& arguments)
{
    process.setProgram(program);
    process.setArguments(arguments);
    startProgram(process);
}

ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& folder,
                      const QProcessEnvironment& environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    startProgram(process, program, arguments);
    EXPECT_TRUE(process.waitForFinished(kTimeoutMs))
        << program.toStdString() << ": " << process.errorString().toStdString();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), linesOf(process.readAllStandardOutput()), linesOf(process.readAllStandardError())};
}

} // namespace zr::test
