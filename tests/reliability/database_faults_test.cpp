// SPDX-License-Identifier: MIT
// A cache database that is damaged, foreign or locked.

#include "core/data_location.h"
#include "tests/reliability/request_test.h"
#include "tests/support/faster_clock.h"
#include "tests/support/files.h"
#include "tests/support/foreign_database.h"
#include "tests/support/qt_printers.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>

#include <functional>

namespace zr::test
{
namespace
{

constexpr qint64 kPageBytes = 4096;

const QStringList kNewNotSaved = kNewEntry + kNotSaved;
const QStringList kNoTable = {"106 database create faild"};
const QStringList kNotOpen = {"110 database no open"};
// The job and extract both open the database.
const QStringList kWithoutTable = kNoTable + kNewNotSaved + kNoTable;
const QStringList kWithoutDatabase = kNotOpen + kNewNotSaved + kNotOpen;

void truncateTo(qint64 bytes)
{
    ASSERT_GT(QFileInfo(defaultDatabasePath()).size(), bytes);
    ASSERT_TRUE(QFile::resize(defaultDatabasePath(), bytes));
}

struct Damage {
    const char* name;
    std::function<void()> make;
    bool loaded;
    bool shown;
    QStringList log;
};

std::ostream& operator<<(std::ostream& out, const Damage& row)
{
    return out << row.name;
}

const Damage kDamages[] = {
    {"Header", [] { overwriteDatabase(0, 16); }, false, false, kWithoutTable},
    {"SchemaPage", [] { overwriteDatabase(100, kPageBytes - 100); }, false, false, kWithoutTable},
    {"TablePage", [] { overwriteDatabase(kPageBytes, kPageBytes); }, false, false, kNewNotSaved},
    {"IndexPage", [] { overwriteDatabase(2 * kPageBytes, kPageBytes); }, false, false, kNewNotSaved},
    {"CutToNothing", [] { truncateTo(0); }, true, true, kNewEntry},
    {"CutInTheHeader", [] { truncateTo(50); }, false, false, kWithoutTable},
    {"CutInTheFirstPage", [] { truncateTo(1000); }, false, false, kWithoutTable},
    {"CutAfterTheFirstPage", [] { truncateTo(kPageBytes); }, false, false, kWithoutTable},
    {"Garbage", [] { writeFile(defaultDatabasePath(), QByteArray(100000, 'x')); }, false, false, kWithoutTable},
    {"NoTable", [] { makeForeignDatabase({"create table other (a int)"}); }, true, true, kNewEntry},
    {"OlderTable",
     [] {
         makeForeignDatabase(
             {"create table thumbnail (thumPath text, thumTime int, filePath text unique, fileTime int)"});
     },
     false, false, kNewNotSaved},
    {"NewerTable",
     [] {
         makeForeignDatabase(
             {"create table thumbnail (thumPath text, thumTime int, filePath text unique, fileTime int, "
              "fileSize int, more int)"});
     },
     false, false, kNewNotSaved},
    {"OtherColumns", [] { makeForeignDatabase({"create table thumbnail (a text, b int, c text, d int, e int)"}); },
     true, false, kNewEntry},
    {"ViewOfThatName", [] { makeForeignDatabase({"create view thumbnail as select 1 as thumPath"}); }, false, false,
     kNewNotSaved},
    {"IndexOfThatName",
     [] {
         makeForeignDatabase({"create table t (a int)", "create index thumbnail on t (a)"});
     },
     false, false, kWithoutTable},
};

class DamagedDatabaseTest : public RequestTest, public ::testing::WithParamInterface<Damage>
{
};

TEST_P(DamagedDatabaseTest, IsReportedAndANewOneWorks)
{
    const Damage& row = GetParam();
    const QString path = source("a.vrx");
    row.make();
    const RequestOutcome outcome = request(path);
    EXPECT_EQ(outcome.loaded, row.loaded);
    EXPECT_EQ(outcome.picture, row.shown ? pictureOf(path) : QImage());
    EXPECT_EQ(outcome.log, row.log);

    ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
    expectRequestWorks(path);
}

INSTANTIATE_TEST_SUITE_P(Database, DamagedDatabaseTest, ::testing::ValuesIn(kDamages),
                         [](const auto& row) { return std::string(row.param.name); });

class DatabaseTest : public RequestTest
{
protected:
    // Another program runs the statements and keeps their locks.
    static void hold(QProcess& holder, int milliseconds, const QStringList& statements)
    {
        holder.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        holder.start(QStringLiteral(ZRTHUMB_DATABASE_HOLDER),
                     QStringList{defaultDatabasePath(), QString::number(milliseconds)} + statements);
        ASSERT_TRUE(holder.waitForReadyRead());
        ASSERT_EQ(holder.readLine(), "ready\n");
    }
};

TEST_F(DatabaseTest, RowsOfADamagedPageAreRecordedAgainInANewDatabase)
{
    const QString path = source("a.vrx");
    expectRequestWorks(path);
    overwriteDatabase(kPageBytes, kPageBytes);
    EXPECT_EQ(request(path).log, kNewNotSaved);
    ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
    expectRequestWorks(path);
}

struct Lock {
    const char* name;
    QStringList statements;
    QStringList log;
    int uses; ///< of the database by a request that wait for the lock
};

std::ostream& operator<<(std::ostream& out, const Lock& lock)
{
    return out << lock.name;
}

const Lock kLocks[] = {
    {"Everything", {"begin exclusive"}, kWithoutTable, 2},
    {"AgainstWriters", {"begin immediate"}, kNewNotSaved, 1},
    {"ByAReader", {"begin", "select * from thumbnail"}, kNewNotSaved, 1},
};

class LockedDatabaseTest : public DatabaseTest, public ::testing::WithParamInterface<Lock>
{
};

constexpr int kLongerThanAnyRequest = 60000;

TEST_P(LockedDatabaseTest, IsWaitedForAndThenReported)
{
    constexpr int kWaitMs = 5000; // by each use of the database
    const QString path = source("a.vrx");
    QProcess holder;
    hold(holder, kLongerThanAnyRequest, GetParam().statements);
    const FasterClock clock;
    QElapsedTimer timer;
    timer.start();
    const RequestOutcome outcome = request(path);
    EXPECT_FALSE(outcome.loaded);
    EXPECT_TRUE(outcome.picture.isNull());
    EXPECT_EQ(outcome.log, GetParam().log);
    EXPECT_GT(timer.elapsed(), GetParam().uses * kWaitMs - 1000);
    EXPECT_FALSE(holder.waitForFinished(0)) << "it must not have given the lock back";

    holder.kill();
    ASSERT_TRUE(holder.waitForFinished());
    expectRequestWorks(path);
}

TEST_P(LockedDatabaseTest, RequestSucceedsWhenItIsReleasedInTime)
{
    const QString path = source("a.vrx");
    QProcess holder;
    hold(holder, 1500, GetParam().statements);
    const RequestOutcome outcome = request(path);
    EXPECT_TRUE(outcome.loaded);
    EXPECT_EQ(outcome.picture, pictureOf(path));
    EXPECT_EQ(outcome.log, kNewEntry);
    ASSERT_TRUE(holder.waitForFinished());
}

INSTANTIATE_TEST_SUITE_P(Database, LockedDatabaseTest, ::testing::ValuesIn(kLocks),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(DatabaseTest, CachedPicturesAreReturnedDuringAWrite)
{
    const QString path = source("a.vrx");
    expectRequestWorks(path);
    QProcess holder;
    hold(holder, kLongerThanAnyRequest, {"begin immediate"});
    QElapsedTimer timer;
    timer.start();
    expectRequestWorks(path);
    EXPECT_LT(timer.elapsed(), 3000);
    holder.kill();
    ASSERT_TRUE(holder.waitForFinished());
}

// Another process inserts the row between this one's look-up and insertion.
TEST_F(DatabaseTest, RowThatAnotherProcessInsertedFirstIsUpdated)
{
    const QString path = source("a.vrx");
    const QString rowByTheOther = QStringLiteral("insert into thumbnail values('/other.png', 0, '%1', 1, 2)").arg(path);
    QProcess holder;
    hold(holder, 1500, {"begin immediate", rowByTheOther});
    const RequestOutcome outcome = request(path);
    EXPECT_TRUE(outcome.loaded);
    EXPECT_EQ(outcome.picture, pictureOf(path));
    EXPECT_EQ(outcome.log, kNewEntry);
    const QFileInfo info(path);
    EXPECT_EQ(rowOf(path),
              QStringLiteral("%1|%2|%3").arg(pngOf(path)).arg(info.lastModified().toSecsSinceEpoch()).arg(info.size()));
    ASSERT_TRUE(holder.waitForFinished());
    EXPECT_EQ(holder.exitCode(), 0);
}

} // namespace
} // namespace zr::test
