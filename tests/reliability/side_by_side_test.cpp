// SPDX-License-Identifier: MIT
// Several processes that make the thumbnails of the same files at the same time.

#include "core/data_location.h"
#include "tests/reliability/host_processes.h"
#include "tests/reliability/setting.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <set>
#include <vector>

namespace zr::test
{
namespace
{

class SideBySideTest : public HostProcessesTest
{
protected:
    void SetUp() override
    {
        HostProcessesTest::SetUp();
        makeSources(setting("ZRTHUMB_SIDE_BY_SIDE_FILES", 40));
    }

    enum class Outcome { AllSucceed, SomeMayFail };

    // Every process requests every file, while this process keeps reading the pictures.
    void runAll(Outcome outcome = Outcome::AllSucceed)
    {
        std::vector<std::unique_ptr<QProcess>> programs;
        for (int i = 0; i < m_processes; ++i) {
            programs.push_back(std::make_unique<QProcess>());
            start(*programs.back(), i % 2 == 0 ? Order::AsCreated : Order::Random);
        }
        const auto isRunning = [](const auto& program) { return program->state() != QProcess::NotRunning; };
        while (std::any_of(programs.begin(), programs.end(), isRunning)) {
            if (outcome == Outcome::AllSucceed)
                readPictures();
            for (const auto& program : programs)
                program->waitForFinished(1);
        }
        for (const auto& program : programs) {
            EXPECT_EQ(program->exitStatus(), QProcess::NormalExit);
            if (outcome == Outcome::SomeMayFail)
                continue;
            EXPECT_EQ(program->exitCode(), 0);
            EXPECT_EQ(program->readAllStandardOutput().count('\n'), sources().size());
            EXPECT_EQ(program->readAllStandardError(), QByteArray());
        }
    }

    // All that is done meanwhile, over and over, is done to files that have changed.
    void runAllDuring(const QString& option, Outcome outcome)
    {
        QProcess care;
        care.start(QStringLiteral(ZRTHUMB_PROGRAM), {option});
        ASSERT_TRUE(care.waitForStarted());
        while (!care.waitForFinished(1) && care.state() != QProcess::NotRunning) {
            touchSources();
            runAll(outcome);
        }
        EXPECT_EQ(care.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(care.readAllStandardError(), QByteArray());
        EXPECT_EQ(care.exitCode(), 0);
        EXPECT_TRUE(care.readAllStandardOutput().startsWith("removed "));
    }

    // Something to remove: pictures that no row names, one of them too young.
    static void addOrphans()
    {
        for (const char* const name : {"old.png", ".leftover.png", "young.png"})
            writeFile(thumbnailImageFolder() + name, "orphan");
        for (const char* const name : {"old.png", ".leftover.png"})
            moveTimeStamp(thumbnailImageFolder() + name, -100);
    }

    static bool hasOrphans()
    {
        return QDir(thumbnailImageFolder()).exists("old.png") || QDir(thumbnailImageFolder()).exists("young.png");
    }

    const int m_processes = setting("ZRTHUMB_SIDE_BY_SIDE_PROCESSES", 8);
    int m_picturesRead = 0; ///< number of complete pictures read

private:
    void readPictures()
    {
        const QDir folder(thumbnailImageFolder());
        const QStringList names = folder.entryList({"[0-9]*"}, QDir::Files); // no orphans
        for (const QString& name : names) {
            EXPECT_FALSE(QImage(folder.filePath(name)).isNull()) << name.toStdString();
            ++m_picturesRead;
        }
    }
};

// How often each message is in the log; a torn line counts as a message that no request has.
std::map<QString, int> countMessages()
{
    std::map<QString, int> counts;
    for (const QString& message : logMessages())
        ++counts[message];
    return counts;
}

TEST_F(SideBySideTest, EveryRequestSucceedsAndNothingIsLostOrTorn)
{
    runAll(); // in a fresh profile
    expectCompleteCache();
    touchSources();
    ASSERT_TRUE(QFile::remove(defaultLogPath()));
    runAll();
    expectCompleteCache();
    EXPECT_EQ(unfinishedPictures(), QStringList());
    EXPECT_GT(m_picturesRead, 0);

    auto counts = countMessages();
    for (const QString& path : sources()) {
        EXPECT_EQ(counts["37 in 2 " + path], m_processes) << path.toStdString();
        counts.erase("37 in 2 " + path);
    }
    EXPECT_EQ(counts["61 app start"], m_processes);
    EXPECT_EQ(counts["63 app after"], m_processes * sources().size());
    EXPECT_GE(counts["106  throw "], sources().size());
    EXPECT_EQ(counts.size(), 3U);
    std::printf("%d processes, %d files, twice: %d complete pictures read meanwhile, %d pictures made again\n",
                m_processes, sources().size(), m_picturesRead, counts["106  throw "]);
}

TEST_F(SideBySideTest, PruningTakesNothingFromOthers)
{
    runAll();
    addOrphans();
    runAllDuring("--prune", Outcome::AllSucceed);
    expectCompleteCache();
    EXPECT_FALSE(hasOrphans());
    EXPECT_EQ(unfinishedPictures(), QStringList());
}

// A request fails whose row is removed before it has looked at it again.
TEST_F(SideBySideTest, ClearingLeavesASoundCache)
{
    runAll();
    addOrphans();
    runAllDuring("--clear", Outcome::SomeMayFail);
    expectSoundCache();
    EXPECT_FALSE(hasOrphans());
    runAll();
    expectCompleteCache();
    EXPECT_EQ(unfinishedPictures(), QStringList());
}

} // namespace
} // namespace zr::test
