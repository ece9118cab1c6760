// SPDX-License-Identifier: MIT
// Outputs to a full disk or to something other than a file.

#include "host/file_task.h"
#include "host/output_file.h"
#include "tests/reliability/fault_hooks.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/vrx_bytes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cerrno>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace zr::test
{
namespace
{

class OutputFaultsTest : public ::testing::Test
{
protected:
    void SetUp() override { m_picture.fill(Qt::red); }

    // All names in the folder, including hidden files.
    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    bool isWhole(const QString& path) const { return QImage(path) == m_picture; }

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath("out.png");
    QImage m_picture{64, 64, QImage::Format_RGB32};
};

TEST_F(OutputFaultsTest, FullDiskKeepsTheOlderFile)
{
    const QByteArray older(3000, 'x');
    for (const qint64 room : {-1, 20}) {
        writeFile(m_path, older);
        const InjectedFault fault({SystemCall::Write, QFile::encodeName(m_folder.path()), ENOSPC, 0, -1, room});
        EXPECT_EQ(writeOutput(m_picture, m_path), "No space left on device");
        EXPECT_GT(fault.hits(), 0);
        EXPECT_EQ(readFile(m_path), older);
        EXPECT_EQ(names(), QStringList({"out.png"}));
    }
}

class OutputFolderFaultsTest : public OutputFaultsTest
{
protected:
    void SetUp() override
    {
        m_options.outputFolder = m_folder.filePath("out");
        m_options.dataFolderUse = DataFolderUse::None;
    }

    FileResult run() const { return FileTask(m_options).run(listFiles({m_source}, false).at(0)); }

    // All names in the outputs' folder.
    QStringList outputs() const { return QDir(m_options.outputFolder).entryList(QDir::Files | QDir::Hidden); }

    Options m_options;
    const QString m_source = writeFile(m_folder.filePath("a.vrx"), samples::oneColourVrxBytes(1));
    const QString m_output = m_folder.filePath("out/a.vrx.png");
};

TEST_F(OutputFolderFaultsTest, FullDiskFailsAFileOfAnOutputFolder)
{
    const Fault full{SystemCall::Write, QFile::encodeName(m_options.outputFolder), ENOSPC, 0, -1, 20};
    {
        const InjectedFault fault(full);
        const FileResult result = run();
        EXPECT_TRUE(result.hasThumbnail());
        EXPECT_EQ(result.picture, m_output);
        EXPECT_EQ(result.writeFault, "No space left on device");
        EXPECT_EQ(outputs(), QStringList());
    }
    EXPECT_EQ(run().writeFault, "");
    const QByteArray older = readFile(m_output);
    moveTimeStamp(m_output, -1000);
    const InjectedFault fault(full);
    EXPECT_EQ(run().writeFault, "No space left on device");
    EXPECT_EQ(readFile(m_output), older);
    EXPECT_EQ(outputs(), QStringList("a.vrx.png"));
}

// It would be newer than what it does not show, and be kept.
TEST_F(OutputFolderFaultsTest, PictureOfAFileThatChangesMeanwhileIsNotWritten)
{
    {
        const InjectedFault change(
            {SystemCall::Read, QFile::encodeName(m_source), 0, 0, 1, -1, 0, [this] { moveTimeStamp(m_source, -60); }});
        EXPECT_EQ(run().writeFault, "its file changed meanwhile; try again");
        EXPECT_EQ(change.hits(), 1);
        EXPECT_EQ(outputs(), QStringList());
    }
    EXPECT_EQ(run().writeFault, "");
    EXPECT_EQ(outputs(), QStringList("a.vrx.png"));
}

TEST_F(OutputFaultsTest, FullDiskLeavesNoPartOfANewFile)
{
    const InjectedFault fault({SystemCall::Write, QFile::encodeName(m_folder.path()), ENOSPC, 0, -1, 20});
    EXPECT_EQ(writeOutput(m_picture, m_path), "No space left on device");
    EXPECT_EQ(names(), QStringList());
}

TEST_F(OutputFaultsTest, FileInAWriteProtectedFolderIsWrittenInPlace)
{
    const InjectedFault fault({SystemCall::OpenToWrite, "/.", EACCES});
    for (const int olderSize : {3000, 0, 3}) {
        writeFile(m_path, QByteArray(olderSize, 'x'));
        EXPECT_EQ(writeOutput(m_picture, m_path), "");
        EXPECT_TRUE(isWhole(m_path));
    }
    EXPECT_EQ(fault.hits(), 3);
}

TEST_F(OutputFaultsTest, FileThatCannotBeReplacedIsWrittenInPlace)
{
    const InjectedFault fault({SystemCall::Rename, QFile::encodeName(m_folder.path()), EPERM});
    writeFile(m_path, QByteArray(3000, 'x'));
    EXPECT_EQ(writeOutput(m_picture, m_path), "");
    EXPECT_TRUE(isWhole(m_path));
    EXPECT_EQ(names(), QStringList({"out.png"}));
}

TEST_F(OutputFaultsTest, FullDiskKeepsTheOlderFileInPlace)
{
    for (const int olderSize : {3000, 0, 30}) {
        const QByteArray older(olderSize, 'x');
        writeFile(m_path, older);
        // Some bytes, none, and none again when the error is determined.
        constexpr int kAttempts = 3;
        const InjectedFault noNewFiles({SystemCall::OpenToWrite, "/.", EACCES});
        const InjectedFault fault({SystemCall::Write, "/out.png", ENOSPC, 0, kAttempts, 20});
        EXPECT_EQ(writeOutput(m_picture, m_path), "No space left on device");
        EXPECT_EQ(readFile(m_path), older);
    }
}

TEST_F(OutputFaultsTest, LinkStaysALink)
{
    const QString target = writeFile(m_folder.filePath("target"), QByteArray(3000, 'x'));
    ASSERT_TRUE(QFile::link(target, m_path));
    EXPECT_EQ(writeOutput(m_picture, m_path), "");
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
    EXPECT_TRUE(isWhole(target));
}

TEST_F(OutputFaultsTest, DanglingLinkCreatesItsTarget)
{
    const QString target = m_folder.filePath("target");
    ASSERT_TRUE(QFile::link(target, m_path));
    EXPECT_EQ(writeOutput(m_picture, m_path), "");
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
    EXPECT_TRUE(isWhole(target));
}

TEST_F(OutputFaultsTest, PermissionsOfTheOlderFileAreKept)
{
    writeFile(m_path, "x");
    ASSERT_EQ(chmod(QFile::encodeName(m_path).constData(), 0600), 0);
    EXPECT_EQ(writeOutput(m_picture, m_path), "");
    EXPECT_EQ(QFile::permissions(m_path) & (QFile::ReadGroup | QFile::ReadOther), 0);
}

TEST_F(OutputFaultsTest, DeviceIsWrittenInPlace)
{
    EXPECT_EQ(writeOutput(m_picture, "/dev/null"), "");
    EXPECT_EQ(writeOutput(m_picture, "/dev/full"), "No space left on device");
    EXPECT_FALSE(QFileInfo("/dev/full").isFile());
}

TEST_F(OutputFaultsTest, PipeGetsThePicture)
{
    ASSERT_EQ(mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
    QByteArray received;
    std::thread reader([&] {
        QFile pipe(m_path);
        if (pipe.open(QIODevice::ReadOnly))
            received = pipe.readAll();
    });
    EXPECT_EQ(writeOutput(m_picture, m_path), "");
    reader.join();
    EXPECT_EQ(QImage::fromData(received, "PNG"), m_picture);
}

} // namespace
} // namespace zr::test
