// SPDX-License-Identifier: MIT
#include "host/file_list.h"

#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zr::test
{
namespace
{

class FileListTest : public ::testing::Test
{
protected:
    void make(const QString& name) const
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        writeFile(path, "x");
    }

    static void hide(const QString& path)
    {
#ifdef Q_OS_WIN
        SetFileAttributesW(reinterpret_cast<LPCWSTR>(QDir::toNativeSeparators(path).utf16()), FILE_ATTRIBUTE_HIDDEN);
#else
        Q_UNUSED(path) // by its name
#endif
    }

    FileList list() const
    {
        return listFiles({m_folder.path()}, true);
    }

    // The files found, relative to the test's folder, with slashes.
    QStringList names(const FileList& list) const
    {
        QStringList found;
        for (const ListedFile& file : list.files)
            found += QDir::fromNativeSeparators(file.path).mid(m_folder.path().size() + 1);
        return found;
    }

    QTemporaryDir m_folder;
};

TEST_F(FileListTest, PathsAreAbsoluteAndNative)
{
    const FileList list = listFiles({"a.stl", "sub/../b.stl"}, false);
    ASSERT_EQ(list.files.size(), 2U);
    EXPECT_EQ(list.files[0].shown, "a.stl");
    EXPECT_EQ(list.files[0].path, QDir::toNativeSeparators(QDir::currentPath() + "/a.stl"));
    EXPECT_EQ(list.files[1].shown, "sub/../b.stl");
    EXPECT_EQ(list.files[1].path, QDir::toNativeSeparators(QDir::currentPath() + "/b.stl"));
}

TEST_F(FileListTest, SupportedFilesBelowAFolderAreSortedByPath)
{
    for (const char* const name : {"b.vrx", "a/z.VRXDLP", "a/c.vrx", "a/b/c/d.stl", "ignored.txt", "ignored.photon",
                                   "stl", "folder.stl/x.obj", "no.suffix.", ".stl"})
        make(name);
    const FileList found = list();
    EXPECT_EQ(names(found), QStringList({"a/b/c/d.stl", "a/c.vrx", "a/z.VRXDLP", "b.vrx", "folder.stl/x.obj"}));
    EXPECT_EQ(found.faults, QStringList());
    EXPECT_EQ(found.notes, QStringList());
}

TEST_F(FileListTest, HiddenFilesAndFoldersAreLeftOutUnlessNamed)
{
    for (const char* const name : {".hidden/a.stl", ".b.stl", "c.stl"})
        make(name);
    hide(m_folder.filePath(".hidden"));
    hide(m_folder.filePath(".b.stl"));
    EXPECT_EQ(names(list()), QStringList({"c.stl"}));
    EXPECT_EQ(names(listFiles({m_folder.filePath(".hidden"), m_folder.filePath(".b.stl")}, true)),
              QStringList({".hidden/a.stl", ".b.stl"}));
}

TEST_F(FileListTest, FolderWithoutSupportedFilesIsReported)
{
    make("a/text.txt");
    make("b/c.stl");
    const QString a = m_folder.filePath("a");
    const FileList list = listFiles({a, m_folder.filePath("b")}, true);
    EXPECT_EQ(list.files.size(), 1U);
    EXPECT_EQ(list.faults, QStringList());
    EXPECT_EQ(list.notes, QStringList(QDir::toNativeSeparators(a) + ": no files here that thumbnails can be made of"));
}

TEST_F(FileListTest, ProgressIsReported)
{
    make("a/b.stl");
    make("c.stl");
    std::vector<std::size_t> counts;
    listFiles({m_folder.path()}, true, [&counts](std::size_t count) { counts.push_back(count); });
    ASSERT_EQ(counts.size(), 2U); // of folders
    EXPECT_EQ(counts.back(), 2U);
}

#ifdef Q_OS_LINUX

constexpr uid_t kNobody = 65534;

TEST_F(FileListTest, FolderThatCannotBeListedIsReported)
{
    make("a/b.stl");
    make("locked/c.stl");
    const QByteArray locked = QFile::encodeName(m_folder.filePath("locked"));
    ASSERT_EQ(chmod(QFile::encodeName(m_folder.path()).constData(), 0755), 0);
    ASSERT_EQ(chmod(locked.constData(), 0), 0);
    // Root may read every folder.
    const bool isRoot = geteuid() == 0;
    ASSERT_TRUE(!isRoot || seteuid(kNobody) == 0);
    const FileList found = list();
    ASSERT_TRUE(!isRoot || seteuid(0) == 0);
    ASSERT_EQ(chmod(locked.constData(), 0755), 0);
    EXPECT_EQ(names(found), QStringList({"a/b.stl"}));
    EXPECT_EQ(found.faults, QStringList(m_folder.filePath("locked") + ": cannot be listed: Permission denied"));
    EXPECT_EQ(found.notes, QStringList());
}

TEST_F(FileListTest, NamesThatAreNotTextAreReported)
{
    make("a.stl");
    const QByteArray folder = QFile::encodeName(m_folder.path());
    for (const char* const name : {"/bad\xff.stl", "/bad\xff.txt", "/bad\xff"}) {
        const QByteArray path = folder + name;
        if (QByteArray(name).contains('.'))
            ASSERT_NE(std::fclose(std::fopen(path.constData(), "w")), EOF);
        else
            ASSERT_EQ(mkdir(path.constData(), 0755), 0);
    }
    FileList found = list();
    EXPECT_EQ(names(found), QStringList({"a.stl"}));
    found.faults.sort();
    ASSERT_EQ(found.faults.size(), 2);
    for (const QString& fault : qAsConst(found.faults))
        EXPECT_TRUE(fault.endsWith(": left out: its name is not text in the encoding of this system; rename it"))
            << fault.toStdString();
}

TEST_F(FileListTest, LinksToFilesCountAndLinksToFoldersAreNotFollowed)
{
    make("real/a.stl");
    ASSERT_TRUE(QFile::link(m_folder.filePath("real/a.stl"), m_folder.filePath("b.stl")));
    ASSERT_TRUE(QFile::link(m_folder.path(), m_folder.filePath("real/loop")));
    ASSERT_TRUE(QFile::link(m_folder.filePath("nowhere"), m_folder.filePath("c.stl")));
    EXPECT_EQ(names(list()), QStringList({"b.stl", "c.stl", "real/a.stl"}));
}

TEST_F(FileListTest, PipesAndDevicesAreLeftOut)
{
    make("a.stl");
    ASSERT_EQ(mkfifo(QFile::encodeName(m_folder.filePath("pipe.stl")).constData(), 0600), 0);
    EXPECT_EQ(names(list()), QStringList({"a.stl"}));
}

#endif

} // namespace
} // namespace zr::test
