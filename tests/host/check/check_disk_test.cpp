// SPDX-License-Identifier: MIT
// zrthumb and its --check on a full disk. They run in the test program, which can make system calls fail.

#include "core/data_location.h"
#include "host/check/check.h"
#include "host/check/data.h"
#include "host/request.h"
#include "tests/reliability/fault_hooks.h"
#include "tests/reliability/request_test.h"
#include "tests/support/qt_printers.h"

#include <QFileInfo>

#include <cerrno>

namespace zr::test
{
namespace
{

class CheckDiskTest : public RequestTest
{
protected:
    static QStringList linesOfChecks(int& status)
    {
        ::testing::internal::CaptureStdout();
        status = runChecks();
        return QString::fromStdString(::testing::internal::GetCapturedStdout()).split('\n', Qt::SkipEmptyParts);
    }
};

TEST_F(CheckDiskTest, FullDiskIsReported)
{
    expectRequestWorks(source("a.vrx"));
    int status = 0;
    QStringList lines;
    {
        const InjectedFault injected({SystemCall::Write, "/KESTRAVO_Thumbnail", ENOSPC});
        lines = linesOfChecks(status);
        EXPECT_GT(injected.hits(), 0);
    }
    EXPECT_EQ(status, 1);
    const QStringList failures = lines.filter("FAIL ").filter("data folder");
    EXPECT_EQ(failures, QStringList("FAIL data folder: " + dataFolder() +
                                    " takes no more data (No space left on device): make room on that disk"));
    EXPECT_EQ(lines.filter("FAIL sample slice file: no thumbnail: ").size(), 1);
    EXPECT_EQ(cachedFiles(), QStringList({"a.vrxvrx.png", "earlier.vrxvrx.png"}));
}

// Whether the folder, its pictures or a new file have no room.
TEST_F(CheckDiskTest, EachFullFolderIsReported)
{
    for (const Fault& fault : {Fault{SystemCall::Write, "/KESTRAVO_Thumbnail", ENOSPC},
                               {SystemCall::Write, "/thumbnailImage", ENOSPC},
                               {SystemCall::OpenToWrite, "/KESTRAVO_Thumbnail", ENOSPC}}) {
        SCOPED_TRACE(fault.pathPart.toStdString() + (fault.call == SystemCall::Write ? " written" : " opened"));
        const InjectedFault injected(fault);
        const Findings findings = checkDataFolder();
        ASSERT_EQ(findings.size(), 1);
        EXPECT_EQ(findings[0].verdict, Verdict::Fail);
        EXPECT_TRUE(
            findings[0].detail.endsWith(" takes no more data (No space left on device): make room on that disk"))
            << findings[0].detail.toStdString();
    }
    EXPECT_EQ(checkDataFolder().first().verdict, Verdict::Ok);
}

TEST_F(CheckDiskTest, FailedRequestReportsTheFullDisk)
{
    expectRequestWorks(source("a.vrx"));
    const QString path = source("b.vrx");
    {
        const InjectedFault writing({SystemCall::Write, "/thumbnailImage/", ENOSPC});
        const InjectedFault asking({SystemCall::AskForRoom, "/"});
        EXPECT_EQ(requestThumbnail(path, QString()).failure.reason,
                  "the disk is full: make room for the data folder, " + dataFolder());
        EXPECT_GT(asking.hits(), 0);
    }
    EXPECT_EQ(requestThumbnail(path, QString()).failure.reason, "");
}

} // namespace
} // namespace zr::test
