// SPDX-License-Identifier: MIT
#include "host/file_access.h"

#include "tests/host/plain_words.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#ifdef Q_OS_LINUX
#include "tests/support/unprivileged.h"

#include <sys/stat.h>
#include <unistd.h>
#else
#include <windows.h>
#endif

namespace zr::test
{
namespace
{

class FileAccessTest : public ::testing::Test
{
protected:
    void SetUp() override { m_file = writeFile(path("a.vrx"), "x"); }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    static void expectFault(const QString& path, const char* fault)
    {
        EXPECT_EQ(sourceFault(path), fault) << path.toStdString();
        if (*fault != '\0')
            expectPlainWords(fault);
    }

    QTemporaryDir m_folder;
    QString m_file;
};

TEST_F(FileAccessTest, FileThatCanBeReadHasNoFault)
{
    expectFault(m_file, "");
}

TEST_F(FileAccessTest, NotAFileIsReported)
{
    expectFault(path("missing.vrx"), "no such file");
    expectFault(path("missing/a.vrx"), "no such file");
    expectFault(m_file + "/b.vrx", "no such file");
    expectFault(m_file + QChar(0) + ".vrx", "no such file");
    expectFault(QString(), "no such file");
    expectFault(m_folder.path(), "it is a folder (--recursive makes thumbnails of the files below it)");
}

TEST_F(FileAccessTest, WritableFilesAreKnown)
{
    EXPECT_EQ(writeFault(m_file), "");
    EXPECT_EQ(writeFault(m_folder.path()), "");
    EXPECT_NE(writeFault(path("missing")), "");
    EXPECT_EQ(readFile(m_file), "x");
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

TEST_F(FileAccessTest, TooLongNamesAreKnown)
{
    EXPECT_TRUE(takesName(m_folder.path(), QString(255, 'n')));
    EXPECT_FALSE(takesName(m_folder.path(), QString(256, 'n')));
}

#ifdef Q_OS_LINUX

TEST_F(FileAccessTest, NameLengthIsCountedInBytes)
{
    EXPECT_TRUE(takesName(m_folder.path(), QString(127, QChar(0xFC))));
    EXPECT_FALSE(takesName(m_folder.path(), QString(128, QChar(0xFC))));
}

TEST_F(FileAccessTest, DanglingLinksAreReported)
{
    ASSERT_TRUE(QFile::link(path("missing.vrx"), path("loose.vrx")));
    ASSERT_TRUE(QFile::link(path("loop.vrx"), path("loop.vrx")));
    ASSERT_TRUE(QFile::link(m_file, path("good.vrx")));
    expectFault(path("loose.vrx"), "it is a link to a file that does not exist");
    expectFault(path("loop.vrx"), "it is a link that leads back to itself");
    expectFault(path("good.vrx"), "");
}

TEST_F(FileAccessTest, PipesAndDevicesAreReportedWithoutWaiting)
{
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe.vrx")).constData(), 0600), 0);
    expectFault(path("pipe.vrx"), "it is not a regular file");
    expectFault("/dev/null", "it is not a regular file");
}

TEST_F(FileAccessTest, NamesThatAreNotTextAreReported)
{
    const QByteArray name = QFile::encodeName(m_folder.path()) + "/t\xfcr.vrx";
    ASSERT_EQ(symlink("a.vrx", name.constData()), 0);
    expectFault(QFile::decodeName(name), "its name is not text (UTF-8): rename it");
    ASSERT_EQ(unlink(name.constData()), 0);
}

TEST_F(FileAccessTest, NamesOfImpossibleLengthAreReported)
{
    expectFault(path(QString(256, 'n')), "no such file: its name is too long for any");
}

TEST_F(FileAccessTest, MissingPermissionIsReported)
{
    ASSERT_TRUE(QDir().mkpath(path("closed")));
    writeFile(path("closed/b.vrx"), "x");
    const Unprivileged user({m_folder.path()});
    setMode(m_file, 0200);
    setMode(path("closed"), 0600);
    expectFault(m_file, "the file cannot be opened: permission denied");
    expectFault(path("closed/b.vrx"),
                "the file cannot be opened: permission denied, a folder above it may not be searched");
    setMode(m_file, 0400);
    EXPECT_EQ(writeFault(m_file), "permission denied");
    for (const mode_t mode : {0500U, 0600U}) {
        setMode(path("closed"), mode);
        EXPECT_EQ(writeFault(path("closed")), "permission denied") << mode;
    }
    setMode(path("closed"), 0700);
    expectFault(path("closed/b.vrx"), "");
}

#else

TEST_F(FileAccessTest, FileLockedByAnotherProgramIsReported)
{
    HANDLE const file = CreateFileW(reinterpret_cast<LPCWSTR>(QDir::toNativeSeparators(m_file).utf16()), GENERIC_READ,
                                    0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    expectFault(m_file, "the file cannot be opened: another program keeps it to itself");
    EXPECT_EQ(writeFault(m_file), "another program keeps it to itself");
    CloseHandle(file);
    expectFault(m_file, "");
}

#endif

} // namespace
} // namespace zr::test
