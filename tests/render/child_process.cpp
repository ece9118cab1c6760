// SPDX-License-Identifier: MIT
#include "tests/render/child_process.h"

#include "tests/support/program_run.h"

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr char kChildMark[] = "ZR_TEST_CHILD";
constexpr int kTimeoutMs = 120000;

} // namespace

bool isChildProcess()
{
    return qEnvironmentVariableIsSet(kChildMark);
}

void runCurrentTestInChild(const std::vector<EnvironmentChange>& changes)
{
    ASSERT_FALSE(isChildProcess());
    const ::testing::TestInfo* test = ::testing::UnitTest::GetInstance()->current_test_info();
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(kChildMark), QStringLiteral("1"));
    for (const EnvironmentChange& change : changes) {
        if (change.value.isNull())
            environment.remove(QString::fromLatin1(change.name));
        else
            environment.insert(QString::fromLatin1(change.name), QString::fromLatin1(change.value));
    }

    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::MergedChannels);
    startProgram(child, QCoreApplication::applicationFilePath(),
                 {QStringLiteral("--gtest_filter=%1.%2").arg(test->test_suite_name(), test->name())});
    ASSERT_TRUE(child.waitForFinished(kTimeoutMs));
    const QByteArray output = child.readAll();
    EXPECT_EQ(child.exitStatus(), QProcess::NormalExit) << output.constData();
    EXPECT_EQ(child.exitCode(), 0) << output.constData();
    // A filter that matches no test would succeed, too.
    EXPECT_TRUE(output.contains("[  PASSED  ] 1 test.")) << output.constData();
}

} // namespace zr::test
