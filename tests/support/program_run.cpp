// SPDX-License-Identifier: MIT
#include "tests/support/program_run.h"

#include <QProcess>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 120000;

// Our programs write UTF-8 to pipes on Windows, and the locale's encoding elsewhere: UTF-8 in tests.
QStringList linesOf(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes).remove('\r').split('\n', Qt::SkipEmptyParts);
}

} // namespace

ProgramRun runProgram(const QString& program, const QStringList& arguments, const QString& folder,
                      const QProcessEnvironment& environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(folder);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(kTimeoutMs)) << program.toStdString();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    return {process.exitCode(), linesOf(process.readAllStandardOutput()), linesOf(process.readAllStandardError())};
}

} // namespace zr::test
