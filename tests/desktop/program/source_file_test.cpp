// SPDX-License-Identifier: MIT
#include "desktop/source_file.h"

#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace zr::desktop
{
namespace
{

struct UriCase {
    const char* input;
    const char* path;
};

const UriCase kUris[] = {
    {"part.stl", "part.stl"},
    {"/models/part.stl", "/models/part.stl"},
    {"/models/100%25.stl", "/models/100%25.stl"}, // a path is taken as it is
    {"file:///models/part.stl", "/models/part.stl"},
    {"FILE:///models/part.stl", "/models/part.stl"},
    {"file:/models/part.stl", "/models/part.stl"},
    {"file://localhost/models/part.stl", "/models/part.stl"},
    {"file:///a%20b%23c%3Fd%25e.stl", "/a b#c?d%e.stl"},
    {"file:///t%C3%BCr.stl", "/t\xc3\xbcr.stl"},
    {"file:///%ff%FE.stl", "/\xff\xfe.stl"}, // not text in any encoding
    {"file:///a%0Ab.stl", "/a\nb.stl"},
    {"file://other.example/models/part.stl", ""},
    {"file://localhost", ""},
    {"file:part.stl", "file:part.stl"}, // no URI that a file manager makes, but a name
    {"http://other.example/part.stl", "http://other.example/part.stl"},
};

TEST(SourceFileTest, FileUrisBecomePaths)
{
    for (const UriCase& row : kUris)
        EXPECT_EQ(localPath(row.input), QByteArray(row.path)) << row.input;
}

class OpenSourceTest : public ::testing::Test
{
protected:
    QByteArray path(const char* name) const { return QFile::encodeName(m_folder.filePath(name)); }

    QByteArray write(const char* name, const QByteArray& bytes) const
    {
        test::writeFile(m_folder.filePath(name), bytes);
        return path(name);
    }

    QTemporaryDir m_folder;
};

TEST_F(OpenSourceTest, OpensPathsAndUris)
{
    const QByteArray file = write("a b.StL", "abc");
    for (const QByteArray& input : {file, "file://" + QByteArray(file).replace(' ', "%20")}) {
        SourceFile source;
        EXPECT_EQ(source.open(input), "");
        EXPECT_EQ(source.path(), file);
        EXPECT_EQ(source.suffix(), "StL");
        EXPECT_FALSE(source.isEmpty());
        char byte = 0;
        EXPECT_EQ(read(source.descriptor(), &byte, 1), 1);
        EXPECT_EQ(byte, 'a');
    }
}

TEST_F(OpenSourceTest, SuffixIsThatOfTheName)
{
    for (const auto& [name, suffix] : {std::pair("none", ""), {".stl", "stl"}, {"a.tar.obj", "obj"}, {"dot.", ""}}) {
        SourceFile source;
        EXPECT_EQ(source.open(write(name, "")), "");
        EXPECT_EQ(source.suffix(), QString(suffix)) << name;
        EXPECT_TRUE(source.isEmpty());
    }
}

TEST_F(OpenSourceTest, WhatCannotBeReadIsSaid)
{
    const QByteArray file = write("part.stl", "abc");
    ASSERT_EQ(mkfifo(path("pipe.stl").constData(), 0600), 0);
    ASSERT_EQ(symlink("nowhere", path("loose.stl").constData()), 0);
    const std::pair<QByteArray, const char*> cases[] = {
        {path("missing.stl"), "no such file"},
        {file + "/below.stl", "no such file"},
        {path("loose.stl"), "no such file"},
        {path(""), "this is a folder"},
        {path("pipe.stl"), "this is not a regular file"},
        {"/dev/null", "this is not a regular file"},
        {"file://other.example/part.stl", "this is a file of another machine"},
        {"file:///part%00.stl", "no such file"},
        {QByteArray(5000, 'a'), "the file cannot be opened: File name too long"},
    };
    for (const auto& [input, reason] : cases) {
        SourceFile source;
        EXPECT_EQ(source.open(input), QByteArray(reason)) << input.constData();
    }
}

} // namespace
} // namespace zr::desktop
