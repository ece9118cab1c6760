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
#include <malloc.h>
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

    // The places of the files below an output's folder.
    static QStringList places(const FileList& list)
    {
        QStringList found;
        for (std::size_t i = 0; i < list.size(); ++i)
            found += list.at(i).below;
        return found;
    }

    FileList listNamed(const QStringList& names, bool recursive) const
    {
        QString fault;
        const FileList list = listNamedFiles(writeFile(m_listFile, names.join('\n').toUtf8()), '\n', recursive, fault);
        EXPECT_EQ(fault, "");
        return list;
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
        for (std::size_t i = 0; i < list.size(); ++i)
            found += QDir::fromNativeSeparators(list.at(i).path).mid(m_folder.path().size() + 1);
        return found;
    }

    // "NAME: REASON" of each.
    static QStringList faults(const FileList& list)
    {
        QStringList texts;
        for (const ListFault& fault : list.faults)
            texts += fault.shown + ": " + fault.reason;
        return texts;
    }

    QTemporaryDir m_folder;
    const QString m_listFile = m_folder.filePath("names.txt");
};

TEST_F(FileListTest, PathsAreAbsoluteAndNative)
{
    const FileList list = listFiles({"a.stl", "sub/../b.stl"}, false);
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list.at(0).shown, "a.stl");
    EXPECT_EQ(list.at(0).path, QDir::toNativeSeparators(QDir::currentPath() + "/a.stl"));
    EXPECT_EQ(list.at(1).shown, "sub/../b.stl");
    EXPECT_EQ(list.at(1).path, QDir::toNativeSeparators(QDir::currentPath() + "/b.stl"));
}

TEST_F(FileListTest, SupportedFilesBelowAFolderAreSortedByPath)
{
    for (const char* const name : {"b.vrx", "a/z.VRXDLP", "a/c.vrx", "a/b/c/d.stl", "ignored.txt", "ignored.photon",
                                   "stl", "folder.stl/x.obj", "no.suffix.", ".stl"})
        make(name);
    const FileList found = list();
    EXPECT_EQ(names(found), QStringList({"a/b/c/d.stl", "a/c.vrx", "a/z.VRXDLP", "b.vrx", "folder.stl/x.obj"}));
    EXPECT_EQ(faults(found), QStringList());
    EXPECT_EQ(found.notes, QStringList());
}

// A folder's files are together, and where its name with a separator belongs.
TEST_F(FileListTest, OrderIsThatOfTheWholePaths)
{
    for (const char* const name : {"a/x.stl", "a-b/x.stl", "a.stl", "a b/x.stl", "a0.stl", "a/b/x.stl", "a/b.stl",
                                   "a/b-c.stl", "B.stl", "a_/x.stl", "b/a.stl", "a.stl.obj", "a/c.txt"})
        make(name);
    const FileList found = list();
    EXPECT_EQ(found.size(), 12U);
    QStringList paths;
    for (std::size_t i = 0; i < found.size(); ++i)
        paths += found.at(i).path;
    QStringList sorted = paths;
    sorted.sort();
    EXPECT_EQ(paths, sorted);
}

TEST_F(FileListTest, NamesAreTheUsersAndPathsAbsolute)
{
    make("a/b/c.stl");
    make("a/d.stl");
    for (const QString& folder : {m_folder.filePath("a"), m_folder.filePath("a/"), m_folder.filePath("a/b/..")}) {
        const FileList found = listFiles({folder}, true);
        ASSERT_EQ(found.size(), 2U);
        const QString prefix = QDir::toNativeSeparators(folder.endsWith('/') ? folder : folder + '/');
        EXPECT_EQ(found.at(0).shown, prefix + QDir::toNativeSeparators("b/c.stl"));
        EXPECT_EQ(found.at(1).shown, prefix + "d.stl");
        EXPECT_EQ(names(found), QStringList({"a/b/c.stl", "a/d.stl"}));
    }
}

TEST_F(FileListTest, PlacesAreBelowTheArgument)
{
    make("a/b/c.stl");
    make("a/d.stl");
    make("e.stl");
    EXPECT_EQ(places(listFiles({m_folder.filePath("e.stl"), m_folder.filePath("a"), m_folder.filePath("a/b/c.stl"),
                                m_folder.filePath("a/b/")},
                               true)),
              QStringList({"e.stl", "b/c.stl", "d.stl", "c.stl", "c.stl"}));
    EXPECT_EQ(places(listFiles({"x.stl", "m/x.stl", "../x.stl", "./m/../x.stl"}, false)),
              QStringList({"x.stl", "x.stl", "x.stl", "x.stl"}));
}

TEST_F(FileListTest, PlacesOfListedNamesKeepTheirFolders)
{
    const QString drive = QDir::separator() == '\\' ? "C:" : "";
    const std::pair<QString, const char*> cases[] = {
        {"a.stl", "a.stl"},
        {"m/a.stl", "m/a.stl"},
        {"./m/a.stl", "m/a.stl"},
        {"m//n///a.stl", "m/n/a.stl"},
        {"m/../n/a.stl", "n/a.stl"},
        {"../a.stl", "a.stl"},
        {"../../m/../../a.stl", "a.stl"},
        {"m/./a.stl", "m/a.stl"},
        {"..a/b../a.stl", "..a/b../a.stl"},
        {drive + "/m/a.stl", drive.isEmpty() ? "m/a.stl" : "C/m/a.stl"},
        {drive + "/../m/a.stl", drive.isEmpty() ? "m/a.stl" : "C/m/a.stl"},
    };
    for (const auto& [name, place] : cases) {
        const FileList list = listNamed({name}, false);
        ASSERT_EQ(list.size(), 1U);
        EXPECT_EQ(list.at(0).shown, name);
        EXPECT_EQ(list.at(0).below, place);
        EXPECT_EQ(list.at(0).path, QDir::toNativeSeparators(QFileInfo(name).absoluteFilePath()));
    }
}

TEST_F(FileListTest, ListedFoldersKeepTheirNames)
{
    make("tree/sub/a.stl");
    make("tree/b.stl");
    const FileList found = listNamed({m_folder.filePath("tree"), m_folder.filePath("tree/b.stl")}, true);
    QString place = m_folder.filePath("tree").mid(1);
    if (QDir::separator() == '\\')
        place = m_folder.filePath("tree").remove(':');
    EXPECT_EQ(places(found), QStringList({place + "/b.stl", place + "/sub/a.stl", place + "/b.stl"}));
    EXPECT_EQ(names(found), QStringList({"tree/b.stl", "tree/sub/a.stl", "tree/b.stl"}));
    EXPECT_EQ(listNamed({m_folder.filePath("tree")}, false).size(), 1U) << "a folder is a file without -r";
}

TEST_F(FileListTest, ListThatCannotBeReadIsAFault)
{
    QString fault;
    EXPECT_EQ(listNamedFiles(m_folder.path(), '\n', false, fault).size(), 0U);
    EXPECT_EQ(fault, "--files-from " + m_folder.path() + ": it is a folder");
}

TEST_F(FileListTest, EqualNamesAreShared)
{
    const FileList list = listFiles({"a/part.stl", "b/part.stl", "a/alone.stl", "c/PART.STL", "part.obj", "x/twice.stl",
                                     "x/twice.stl", "x/part.stl.stl"},
                                    false);
    const bool expected[] = {true, true, false, true, false, true, true, false};
    for (std::size_t i = 0; i < list.size(); ++i)
        EXPECT_EQ(list.at(i).isShared, expected[i]) << list.at(i).shown.toStdString();
    EXPECT_EQ(list.nameHash(0), list.nameHash(1));
    EXPECT_EQ(list.nameHash(0), list.nameHash(3));
    EXPECT_NE(list.nameHash(0), list.nameHash(2));
}

// Names that are not at the end of their absolute paths.
TEST_F(FileListTest, UnusualNamesStayWhole)
{
    for (const char* const name : {".", "..", "/", "a/..", "a/.", "a/", "", "m//a.stl", "a.stl/."}) {
        const FileList list = listFiles({name, "next.stl"}, false);
        ASSERT_EQ(list.size(), 2U);
        EXPECT_EQ(list.at(0).shown, name);
        EXPECT_EQ(list.at(0).path, QDir::toNativeSeparators(QFileInfo(name).absoluteFilePath())) << name;
        EXPECT_EQ(list.at(1).shown, "next.stl");
        EXPECT_EQ(list.at(1).path, QDir::toNativeSeparators(QDir::currentPath() + "/next.stl"));
    }
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
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(faults(list), QStringList());
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
    EXPECT_EQ(faults(found), QStringList(m_folder.filePath("locked") + ": cannot be listed: Permission denied"));
    EXPECT_EQ(found.notes, QStringList());
}

// Libraries have a million files.
TEST_F(FileListTest, ManyNamesTakeLittleMemory)
{
    constexpr std::size_t kCount = 100000;
    constexpr std::size_t kMaxBytes = 100;
    QStringList names;
    for (std::size_t i = 0; i < kCount; ++i)
        names += QStringLiteral("a folder with a long name/%1/part %2.stl").arg(i / 1000).arg(i);
    const auto before = mallinfo2().uordblks + mallinfo2().hblkhd;
    const FileList list = listNamed(names, false);
    EXPECT_LT(mallinfo2().uordblks + mallinfo2().hblkhd - before, kCount * kMaxBytes);
    ASSERT_EQ(list.size(), kCount);
    EXPECT_EQ(list.at(kCount - 1).shown, names.last());
    EXPECT_EQ(list.at(kCount / 2).below, names.at(kCount / 2));
}

// Without the codec for them (host/name_codec.h), as in locales for which there is none.
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
    const FileList found = list();
    EXPECT_EQ(names(found), QStringList({"a.stl"}));
    ASSERT_EQ(found.faults.size(), 2U);
    for (const ListFault& fault : found.faults)
        EXPECT_EQ(fault.reason, "left out: its name is not text in the encoding of this system; rename it")
            << fault.shown.toStdString();
    // Qt cannot remove these.
    for (const char* const name : {"/bad\xff.stl", "/bad\xff.txt", "/bad\xff"})
        EXPECT_EQ(std::remove((folder + name).constData()), 0);
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
