// SPDX-License-Identifier: MIT
// A process that is killed in the middle of its work.

#include "core/data_location.h"
#include "tests/reliability/host_processes.h"
#include "tests/reliability/setting.h"
#include "tests/support/qt_printers.h"

#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <random>

namespace zr::test
{
namespace
{

class KillTest : public HostProcessesTest
{
protected:
    void runToTheEnd() const
    {
        QProcess program;
        start(program, Order::AsCreated);
        ASSERT_TRUE(program.waitForFinished(60000));
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().constData();
    }

    // Kills a run at a random moment. False if it had already ended.
    bool killOnce()
    {
        std::uniform_int_distribution<> moment(1, std::max(m_runMs, 2));
        QProcess program;
        QElapsedTimer timer;
        timer.start();
        start(program, Order::Random);
        if (program.waitForFinished(moment(m_random))) {
            m_runMs = static_cast<int>(timer.elapsed());
            return false;
        }
        m_runMs += m_runMs / 20;
        program.kill();
        EXPECT_TRUE(program.waitForFinished(60000));
        return program.exitStatus() == QProcess::CrashExit;
    }

private:
    int m_runMs = 1000; ///< estimated time of a complete run
    std::mt19937 m_random{std::random_device{}()};
};

TEST_F(KillTest, CacheIsSoundAfterEachKillAndCompleteAfterTheNextRun)
{
    constexpr int kFiles = 18;
    const int kills = setting("ZRTHUMB_KILLS", 12);
    makeSources(kFiles);
    int killed = 0;
    int interruptedTransactions = 0;
    int rowsSeen = 0;
    for (int run = 0; killed < kills; ++run) {
        ASSERT_LT(run, 20 * kills);
        touchSources();
        // A new profile is most vulnerable while the database is made.
        if (run % 4 == 0)
            SetUp();
        killed += killOnce() ? 1 : 0;
        interruptedTransactions += QFileInfo(defaultDatabasePath() + "-journal").size() > 0 ? 1 : 0;
        rowsSeen += expectSoundCache();
    }
    EXPECT_GT(rowsSeen, 0);
    const int unfinished = unfinishedPictures().size();
    EXPECT_LE(unfinished, kills);
    runToTheEnd();
    expectCompleteCache();
    std::printf("%d kills: %d in a transaction of the database, %d in the last profile while a picture was saved\n",
                killed, interruptedTransactions, unfinished);
}

} // namespace
} // namespace zr::test
