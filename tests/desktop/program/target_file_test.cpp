// SPDX-License-Identifier: MIT
#include "desktop/target_file.h"

#include "desktop/descriptor.h"
#include "desktop/source_file.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace zr::desktop
{
namespace
{

const QByteArray kPng = QByteArray("\x89PNG\r\n\x1a\n") + QByteArray(40, 'p');
const QByteArray kLongerPng = kPng + QByteArray(1000, 'q');

class TargetFileTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        test::writeFile(m_folder.filePath("part.stl"), "solid");
        ASSERT_EQ(m_source.open(path("part.stl")), "");
    }

    QByteArray path(const char* name) const { return QFile::encodeName(m_folder.filePath(name)); }
    QByteArray bytes(const char* name) const { return test::readFile(m_folder.filePath(name)); }
    void write(const char* name, const QByteArray& bytes) const { test::writeFile(m_folder.filePath(name), bytes); }

    QTemporaryDir m_folder;
    SourceFile m_source;
    TargetFile m_target;
};

TEST_F(TargetFileTest, NewFileIsWritten)
{
    ASSERT_EQ(m_target.open(path("out.png"), m_source), "");
    EXPECT_EQ(bytes("out.png"), "");
    EXPECT_EQ(m_target.write(kPng), "");
    EXPECT_EQ(bytes("out.png"), kPng);
}

// Whoever has it open sees the new picture, and only that.
TEST_F(TargetFileTest, OlderPictureIsReplacedInPlace)
{
    write("out.png", kLongerPng);
    QFile open(m_folder.filePath("out.png"));
    ASSERT_TRUE(open.open(QIODevice::ReadOnly));
    ASSERT_EQ(m_target.open(path("out.png"), m_source), "");
    EXPECT_EQ(bytes("out.png"), kLongerPng); // until the new one is there
    EXPECT_EQ(m_target.write(kPng), "");
    EXPECT_EQ(open.readAll(), kPng);
}

TEST_F(TargetFileTest, EmptyFileOfTheFileManagerIsWrittenInPlace)
{
    write("out.png", "");
    struct stat before = {}, after = {};
    ASSERT_EQ(stat(path("out.png").constData(), &before), 0);
    ASSERT_EQ(m_target.open(path("out.png"), m_source), "");
    EXPECT_EQ(m_target.write(kPng), "");
    ASSERT_EQ(stat(path("out.png").constData(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
}

TEST_F(TargetFileTest, LinkStaysALink)
{
    ASSERT_EQ(symlink("real.png", path("link.png").constData()), 0);
    ASSERT_EQ(m_target.open(path("link.png"), m_source), "");
    EXPECT_EQ(m_target.write(kPng), "");
    EXPECT_TRUE(QFileInfo(m_folder.filePath("link.png")).isSymLink());
    EXPECT_EQ(bytes("real.png"), kPng);
}

TEST_F(TargetFileTest, SourceIsNotOverwritten)
{
    ASSERT_EQ(link(path("part.stl").constData(), path("hard.png").constData()), 0);
    ASSERT_EQ(symlink("part.stl", path("soft.png").constData()), 0);
    for (const char* name : {"part.stl", "hard.png", "soft.png"}) {
        TargetFile target;
        EXPECT_EQ(target.open(path(name), m_source), "this is INPUT itself; name the PNG to write") << name;
        EXPECT_TRUE(target.isMistaken());
    }
    EXPECT_EQ(bytes("part.stl"), "solid");
}

// As with "zrthumbnailer part.stl - >>part.stl".
TEST_F(TargetFileTest, SourceIsNotOverwrittenThroughStdout)
{
    std::fflush(stdout);
    const Descriptor stdoutBefore(dup(STDOUT_FILENO));
    const Descriptor source(::open(path("part.stl").constData(), O_WRONLY | O_APPEND));
    ASSERT_NE(dup2(source.number(), STDOUT_FILENO), -1);
    const QByteArray reason = m_target.open("-", m_source);
    ASSERT_NE(dup2(stdoutBefore.number(), STDOUT_FILENO), -1);
    EXPECT_EQ(reason, "this is INPUT itself; name the PNG to write");
    EXPECT_TRUE(m_target.isMistaken());
    EXPECT_EQ(bytes("part.stl"), "solid");
}

TEST_F(TargetFileTest, OtherFilesAreNotOverwritten)
{
    for (const QByteArray& content : {QByteArray("v 1 2 3\n"), QByteArray("x"), kPng.left(7), "\xff" + kPng.mid(1)}) {
        write("other.obj", content);
        TargetFile target;
        EXPECT_EQ(target.open(path("other.obj"), m_source), "this file is no PNG, and is not overwritten");
        EXPECT_TRUE(target.isMistaken());
        EXPECT_EQ(bytes("other.obj"), content);
    }
}

TEST_F(TargetFileTest, WhatCannotBeOpenedIsSaid)
{
    const std::pair<QByteArray, const char*> cases[] = {
        {path(""), "cannot be written: Is a directory"},
        {path("no/folder.png"), "cannot be written: No such file or directory"},
        {path("part.stl/a.png"), "cannot be written: Not a directory"},
    };
    for (const auto& [output, reason] : cases) {
        TargetFile target;
        EXPECT_EQ(target.open(output, m_source), QByteArray(reason)) << output.constData();
        EXPECT_FALSE(target.isMistaken());
    }
}

TEST_F(TargetFileTest, DeviceIsWritten)
{
    ASSERT_EQ(m_target.open("/dev/null", m_source), "");
    EXPECT_EQ(m_target.write(kPng), "");
    TargetFile full;
    ASSERT_EQ(full.open("/dev/full", m_source), "");
    EXPECT_EQ(full.write(kPng), "cannot be written: No space left on device");
}

// A limit of the file's size stands for a full disk.
TEST_F(TargetFileTest, HalfAPictureIsRemoved)
{
    write("out.png", kPng);
    ASSERT_EQ(m_target.open(path("out.png"), m_source), "");
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit usual = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &usual), 0);
    const struct rlimit small = {100, usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const QByteArray reason = m_target.write(kLongerPng);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &usual), 0);
    std::signal(SIGXFSZ, before);
    EXPECT_EQ(reason, "cannot be written: File too large");
    EXPECT_EQ(bytes("out.png"), "");
}

} // namespace
} // namespace zr::desktop
