// SPDX-License-Identifier: MIT
#include "host/output_folder.h"

#include "host/platform.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDateTime>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

QString native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

class OutputFolderTest : public ::testing::Test
{
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    QString make(const QString& name) const
    {
        QDir(m_folder.path()).mkpath(QFileInfo(name).path());
        return writeFile(path(name), "x");
    }

    QString fault(const QString& folder, const QStringList& files, bool recursive = false) const
    {
        const QString text = outputFolderFault(folder, listFiles(files, recursive));
        EXPECT_TRUE(text.isEmpty() || text.startsWith("--output-dir ")) << text.toStdString();
        EXPECT_FALSE(text.contains('\n')) << text.toStdString();
        return text;
    }

    QTemporaryDir m_folder;
};

TEST_F(OutputFolderTest, OutputIsThePlaceBelowTheFolderAndPng)
{
    const struct {
        const char* folder;
        const char* below;
        const char* output;
    } cases[] = {
        {"out", "a.stl", "out/a.stl.png"},
        {"out/", "a.stl", "out/a.stl.png"},
        {"./out", "sub/b.c/a.STL", "./out/sub/b.c/a.STL.png"},
        {"/", "a.stl", "/a.stl.png"},
        {"..", "a.stl", "../a.stl.png"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(outputIn(row.folder, {"shown", "path", row.below, false}), native(row.output));
}

TEST_F(OutputFolderTest, FolderMayExistOrBeMadeInAnother)
{
    const QString file = make("a.stl");
    EXPECT_EQ(fault(QString(), {file}), "");
    EXPECT_EQ(fault(m_folder.path(), {file}), "");
    EXPECT_EQ(fault(path("new"), {file}), "");
    EXPECT_EQ(fault(path("new/"), {file}), "");
    EXPECT_EQ(fault("./-new", {file}), "");
    EXPECT_FALSE(QFileInfo::exists(path("new")));
}

TEST_F(OutputFolderTest, WrongFoldersAreRefused)
{
    const QString file = make("a.stl");
    make("taken");
    const std::pair<QString, const char*> cases[] = {
        {path("taken"), "this is not a folder"},
        {file, "this is not a folder"},
        {path("no/new"), "there is no folder to make it in"},
        {path("taken/new"), "there is no folder to make it in"},
        {"-r", "the name of the folder is missing (or is ./-r)"},
        {"--sheet", "the name of the folder is missing (or is ./--sheet)"},
        {"-", "the name of the folder is missing (or is ./-)"},
    };
    for (const auto& [folder, reason] : cases)
        EXPECT_EQ(fault(folder, {file}), "--output-dir " + folder + ": " + reason);
}

TEST_F(OutputFolderTest, FilesOfOneOutputAreRefused)
{
    const QString a = make("a/part.stl");
    const QString b = make("b/part.stl");
    const QString out = path("out");
    const QString expected = "--output-dir " + out + ": %1 and %2 would both be written to " +
                             native(out + "/part.stl.png") +
                             "; name the folder above both, with -r, or give each run a folder of its own";
    const QString refused = fault(out, {a, b});
    EXPECT_TRUE(refused == expected.arg(a, b) || refused == expected.arg(b, a)) << refused.toStdString();
    EXPECT_NE(fault(out, {path("a"), path("b")}, true), "");
    EXPECT_NE(fault(out, {make("c.stl"), a, make("d.stl"), b}), "");
    // The same file twice, under two names
    EXPECT_EQ(fault(out, {a, a, path("b/../a/part.stl")}), "");
    // Different suffixes
    EXPECT_EQ(fault(out, {a, make("b/part.obj")}), "");
    EXPECT_EQ(fault(out, {m_folder.path()}, true), "");
}

TEST_F(OutputFolderTest, NamesThatDifferInCaseAreOneWhereTheSystemSaysSo)
{
    const QString a = make("a/part.stl");
    const QString b = make("b/Part.STL");
    EXPECT_EQ(fault(path("out"), {a, b}).isEmpty(), caseOfNames() == Qt::CaseSensitive);
}

TEST_F(OutputFolderTest, FilesInTheWayAreRefused)
{
    const QString model = make("a.stl");
    const QString picture = make("a.stl.png");
    const QString expected = "--output-dir %1: " + picture +
                             " is one of the files to make thumbnails of, and a picture would be written over it";
    for (const QString& folder :
         {m_folder.path(), m_folder.path() + '/', path("../" + QDir(m_folder.path()).dirName())})
        EXPECT_EQ(fault(folder, {model, picture}), expected.arg(folder));
    EXPECT_EQ(fault(path("out"), {model, picture}), "");
    const bool isOther = caseOfNames() == Qt::CaseSensitive;
    EXPECT_EQ(fault(m_folder.path(), {model, path("A.STL.PNG")}).isEmpty(), isOther);
}

class CurrentOutputTest : public OutputFolderTest
{
protected:
    void SetUp() override
    {
        QImage image(40, 30, QImage::Format_ARGB32);
        image.fill(Qt::red);
        ASSERT_TRUE(image.save(m_output));
        moveTimeStamp(m_source, -1000);
    }

    const QString m_source = make("a.stl");
    const QString m_output = path("a.stl.png");
};

TEST_F(CurrentOutputTest, IsNewerThanItsFile)
{
    EXPECT_EQ(currentOutput(m_output, m_source), QSize(40, 30));
    moveTimeStamp(m_output, -999);
    EXPECT_EQ(currentOutput(m_output, m_source), QSize(40, 30));
}

// A file that changes within the step of the time stamps would keep its picture.
TEST_F(CurrentOutputTest, OneOfTheSameTimeOrOlderIsNot)
{
    QFile output(m_output);
    const QDateTime sourceTime = QFileInfo(m_source).lastModified();
    for (const int seconds : {0, -1, -100000}) {
        ASSERT_TRUE(output.open(QIODevice::ReadWrite));
        ASSERT_TRUE(output.setFileTime(sourceTime.addSecs(seconds), QFileDevice::FileModificationTime));
        output.close();
        EXPECT_EQ(currentOutput(m_output, m_source), std::nullopt) << seconds;
    }
}

TEST_F(CurrentOutputTest, MissingOrDamagedOneIsNot)
{
    const QByteArray whole = readFile(m_output);
    EXPECT_EQ(currentOutput(path("missing.png"), m_source), std::nullopt);
    EXPECT_EQ(currentOutput(m_output, path("missing.stl")), std::nullopt);
    EXPECT_EQ(currentOutput(m_folder.path(), m_source), std::nullopt);
    EXPECT_EQ(currentOutput(m_output, m_folder.path()), std::nullopt);
    QByteArray otherStart = whole;
    otherStart[0] = 'x';
    for (const QByteArray& damaged : {QByteArray(), QByteArray("x"), whole.left(8), whole.left(20), otherStart,
                                      whole.left(whole.size() / 2), whole.chopped(1), QByteArray(1000, '\0')}) {
        writeFile(m_output, damaged);
        EXPECT_EQ(currentOutput(m_output, m_source), std::nullopt) << damaged.size();
    }
    writeFile(m_output, whole);
    EXPECT_EQ(currentOutput(m_output, m_source), QSize(40, 30));
}

} // namespace
} // namespace zr::test
