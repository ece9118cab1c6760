// SPDX-License-Identifier: MIT
#include "core/log_file.h"

#include "core/data_location.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>

namespace zr::test
{
namespace
{

constexpr qint64 kMaxBytes = 104857600; // 100 MiB

class LogFileTest : public DataFolderTest
{
};

QByteArray logBytes()
{
    QFile log(defaultLogPath());
    return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
}

// A sparse file: only its length matters.
void makeLogOfSize(qint64 bytes, const QString& path = defaultLogPath())
{
    QFile log(path);
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    ASSERT_TRUE(log.resize(bytes));
}

TEST_F(LogFileTest, LineIsStampMessageAndLineFeed)
{
    createDataFolder();
    LogFile::instance()->init(QString());
    const QDateTime before = QDateTime::currentDateTime();
    LogFile::instance()->write(QStringLiteral("37 in 2 x"));
    const QDateTime after = QDateTime::currentDateTime();

    const auto lineAt = [](const QDateTime& time) {
        return time.toString(QStringLiteral("dd.MM.yyyy - hh:mm:ss ")).toLatin1() + "37 in 2 x\n";
    };
    EXPECT_TRUE(logBytes() == lineAt(before) || logBytes() == lineAt(after)) << logBytes().toStdString();
}

TEST_F(LogFileTest, NumberedLinesHaveOneBlankAndThrowLinesTwo)
{
    createDataFolder();
    LogFile::instance()->init(QString());
    logLine(84, QStringLiteral("a %1 %2 text"));
    EXPECT_THROW(throwKey(85, "someErr"), QString);
    EXPECT_EQ(logMessages(), QStringList({"84 a %1 %2 text", "85  throw "}));
}

TEST_F(LogFileTest, EachLineIsOnDiskAtOnce)
{
    createDataFolder();
    LogFile::instance()->init(QString());
    for (int i = 1; i <= 3; ++i) {
        LogFile::instance()->write(QStringLiteral("line"));
        EXPECT_EQ(logBytes().count('\n'), i);
    }
}

TEST_F(LogFileTest, LinesAreLostUntilTheFolderExists)
{
    LogFile::instance()->init(QString());
    LogFile::instance()->write(QStringLiteral("lost"));
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));

    createDataFolder();
    LogFile::instance()->write(QStringLiteral("kept"));
    EXPECT_EQ(logMessages(), QStringList({"kept"}));
}

TEST_F(LogFileTest, InitCreatesNothing)
{
    LogFile::instance()->init(QString());
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));
    createDataFolder();
    LogFile::instance()->init(QString());
    EXPECT_FALSE(QFileInfo::exists(defaultLogPath()));
}

TEST_F(LogFileTest, LogOfExactlyTheLimitIsKept)
{
    createDataFolder();
    makeLogOfSize(kMaxBytes);
    LogFile::instance()->init(QString());
    EXPECT_EQ(QFileInfo(defaultLogPath()).size(), kMaxBytes);
}

TEST_F(LogFileTest, LogPastTheLimitIsDeletedAndRestarted)
{
    createDataFolder();
    makeLogOfSize(kMaxBytes + 1);
    LogFile::instance()->init(QString());
    EXPECT_FALSE(QFileInfo::exists(defaultLogPath()));
    LogFile::instance()->write(QStringLiteral("first"));
    EXPECT_EQ(logMessages(), QStringList({"first"}));
}

TEST_F(LogFileTest, EndedInstanceIsFollowedByOneWithoutAPath)
{
    createDataFolder();
    LogFile::instance()->init(QString());
    LogFile::instance()->write(QStringLiteral("one"));
    LogFile::end();

    LogFile::instance()->write(QStringLiteral("lost"));
    LogFile::instance()->init(QString());
    LogFile::instance()->write(QStringLiteral("two"));
    EXPECT_EQ(logMessages(), QStringList({"one", "two"}));
}

TEST_F(LogFileTest, EndClosesTheFile)
{
    createDataFolder();
    LogFile::instance()->init(QString());
    LogFile::instance()->write(QStringLiteral("one"));
    LogFile::end();
    // Lines for a file that is still open would go to it under its new name.
    ASSERT_TRUE(QFile::rename(defaultLogPath(), defaultLogPath() + ".old"));
    LogFile::instance()->init(QString());
    LogFile::instance()->write(QStringLiteral("two"));
    EXPECT_EQ(logMessages(), QStringList({"two"}));
}

TEST_F(LogFileTest, InitKeepsTheOpenFile)
{
    createDataFolder();
    const QTemporaryDir elsewhere;
    const QString other = elsewhere.filePath("other.log");
    {
        QFile file(other);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    LogFile::instance()->init(QString());
    LogFile::instance()->write(QStringLiteral("one"));
    LogFile::instance()->init(other);
    LogFile::instance()->write(QStringLiteral("two"));
    EXPECT_EQ(logMessages(), QStringList({"one", "two"}));
    EXPECT_EQ(QFileInfo(other).size(), 0);
}

TEST_F(LogFileTest, PathIsUsedOnlyIfItNamesARegularFile)
{
    createDataFolder();
    const QTemporaryDir elsewhere;
    for (const QString& path : {elsewhere.path(), elsewhere.filePath("missing.log")}) {
        LogFile::instance()->init(path);
        LogFile::instance()->write(QStringLiteral("default"));
        LogFile::end();
    }
    EXPECT_EQ(logMessages(), QStringList({"default", "default"}));
    EXPECT_FALSE(QFileInfo::exists(elsewhere.filePath("missing.log")));
}

TEST_F(LogFileTest, NamedRegularFileIsTheLog)
{
    createDataFolder();
    const QTemporaryDir elsewhere;
    const QString other = elsewhere.filePath("other.log");
    makeLogOfSize(0, other);
    LogFile::instance()->init(other);
    LogFile::instance()->write(QStringLiteral("there"));
    LogFile::end();
    EXPECT_GT(QFileInfo(other).size(), 0);
    EXPECT_FALSE(QFileInfo::exists(defaultLogPath()));

    makeLogOfSize(kMaxBytes + 1, other);
    LogFile::instance()->init(other);
    EXPECT_FALSE(QFileInfo::exists(other));
}

TEST_F(LogFileTest, NonAsciiIsWrittenInTheLocalCodePage)
{
    createDataFolder();
    LogFile::instance()->init(QString());
    const QString message = QString::fromUtf8("37 in 2 /t\xc3\xbcr.stl");
    LogFile::instance()->write(message);
    EXPECT_TRUE(logBytes().endsWith(message.toLocal8Bit() + '\n'));
}

TEST_F(LogFileTest, LinesKeptInMemoryTouchNoFile)
{
    createDataFolder();
    LogFile::instance()->init(QString());
    LogFile::instance()->write(QStringLiteral("in the file"));
    LogFile::end();
    EXPECT_EQ(LogFile::instance()->keptLines(), QStringList());

    LogFile::instance()->keepInMemory();
    logLine(84, QStringLiteral("kept"));
    EXPECT_THROW(throwKey(85, "someErr"), QString);
    EXPECT_EQ(LogFile::instance()->keptLines(), QStringList({"84 kept", "85  throw "}));
    LogFile::end();
    EXPECT_EQ(LogFile::instance()->keptLines(), QStringList());
    EXPECT_EQ(logMessages(), QStringList("in the file"));
}

TEST_F(LogFileTest, FolderInPlaceOfTheLogLosesLinesSilently)
{
    createDataFolder();
    ASSERT_TRUE(QDir().mkpath(defaultLogPath()));
    LogFile::instance()->init(QString());
    LogFile::instance()->write(QStringLiteral("lost"));
    EXPECT_TRUE(QFileInfo(defaultLogPath()).isDir());
}

} // namespace
} // namespace zr::test
