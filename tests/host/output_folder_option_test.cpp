// SPDX-License-Identifier: MIT
// zrthumb --output-dir.

#include "tests/host/batch_fixture.h"

#ifdef Q_OS_LINUX
#include "tests/support/unprivileged.h"
#endif

namespace zr::test
{
namespace
{

class OutputFolderOptionTest : public BatchTest
{
};

TEST_F(OutputFolderOptionTest, OutputFolderIsMadeAndKeepsTheTree)
{
    oldSource("m/a.vrx", kRed);
    oldSource("m/sub/deep/b.vrx", kGreen);
    oldSource("other/c.vrx", kBlue);
    const ProgramRun outcome = run({"-r", "--output-dir", "out", "-s", "64", "m", "other/c.vrx"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, QStringList());
    EXPECT_EQ(outcome.out,
              QStringList({native("out/a.vrx.png"), native("out/sub/deep/b.vrx.png"), native("out/c.vrx.png")}));
    EXPECT_EQ(filesBelow("out"), QStringList({"a.vrx.png", "c.vrx.png", "sub/deep/b.vrx.png"}));
    for (const QString& name : filesBelow("out"))
        EXPECT_EQ(QImage(path("out/" + name)).size(), QSize(64, 64)) << name.toStdString();
    ASSERT_EQ(run({"-r", "--output-dir", "full", "m", "other/c.vrx"}).status, 0);
    EXPECT_EQ(picture("full/a.vrx.png"), pictureOf(kRed));
    EXPECT_EQ(picture("full/sub/deep/b.vrx.png"), pictureOf(kGreen));
    EXPECT_EQ(picture("full/c.vrx.png"), pictureOf(kBlue));
}

TEST_F(OutputFolderOptionTest, PicturesThatAreNewerThanTheirFilesAreKept)
{
    oldSource("m/a.vrx");
    oldSource("m/b.vrx");
    const QStringList arguments = {"-r", "--output-dir", "out", "m"};
    const auto first = objects(arguments, 0);
    EXPECT_EQ(values(first, "cached"), QStringList({"false", "false"}));
    moveTimeStamp(path("out/a.vrx.png"), -500);
    const QDateTime before = time("out/a.vrx.png");
    const auto second = objects(arguments, 0);
    EXPECT_EQ(values(second, "cached"), QStringList({"true", "true"}));
    EXPECT_EQ(values(second, "picture"), values(first, "picture"));
    EXPECT_EQ(values(second, "width"), QStringList({"400", "400"}));
    EXPECT_EQ(run(arguments).out, QStringList({native("out/a.vrx.png"), native("out/b.vrx.png")}));
    EXPECT_EQ(time("out/a.vrx.png"), before);
    // Whatever else is asked for: what is there is kept.
    EXPECT_EQ(run(arguments + QStringList{"-s", "64"}).status, 0);
    EXPECT_EQ(time("out/a.vrx.png"), before);

    EXPECT_EQ(run(arguments + QStringList("--refresh")).status, 0);
    EXPECT_GT(time("out/a.vrx.png"), before);
}

TEST_F(OutputFolderOptionTest, ChangedFileGetsANewPicture)
{
    oldSource("a.vrx", kRed);
    oldSource("b.vrx", kRed);
    ASSERT_EQ(run({"--output-dir", "out", "a.vrx", "b.vrx"}).status, 0);
    for (const char* const name : {"out/a.vrx.png", "out/b.vrx.png"})
        moveTimeStamp(path(name), -500);
    const QDateTime before = time("out/b.vrx.png");
    source("a.vrx", kBlue);
    EXPECT_EQ(values(objects({"--output-dir", "out", "a.vrx", "b.vrx"}, 0), "cached"), QStringList({"false", "true"}));
    EXPECT_EQ(picture("out/a.vrx.png"), pictureOf(kBlue));
    EXPECT_EQ(time("out/b.vrx.png"), before);
}

// A model of whatever time shows in the sheet, and its file is written anew.
TEST_F(OutputFolderOptionTest, SheetGoesWithAFolder)
{
    oldSource("a.vrx");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(run({"--output-dir", "out", "--sheet", "sheet.png", "a.vrx"}).status, 0);
        EXPECT_FALSE(QImage(path("sheet.png")).isNull());
        EXPECT_FALSE(QImage(path("out/a.vrx.png")).isNull());
        ASSERT_TRUE(QFile::remove(path("sheet.png")));
    }
}

TEST_F(OutputFolderOptionTest, EqualNamesHaveTheirOwnPictures)
{
    const quint16 words[] = {kRed, kGreen, kBlue};
    for (int i = 0; i < 3; ++i)
        oldSource(QStringLiteral("m/%1/part.vrx").arg(i), words[i]);
    // With an empty cache, with a full one, and in processes that work side by side.
    for (const QStringList& more : {QStringList{}, QStringList{}, QStringList{"-j", "3"}}) {
        const ProgramRun outcome = run(QStringList{"-r", "--refresh", "--output-dir", "out", "m"} + more);
        ASSERT_EQ(outcome.status, 0) << outcome.err.join('\n').toStdString();
        EXPECT_EQ(picture("out/0/part.vrx.png"), pictureOf(kRed));
        EXPECT_EQ(picture("out/1/part.vrx.png"), pictureOf(kGreen));
        EXPECT_EQ(picture("out/2/part.vrx.png"), pictureOf(kBlue));
    }
}

TEST_F(OutputFolderOptionTest, FileGivenTwiceHasOneLineEach)
{
    const QString file = oldSource("m/a.vrx");
    const auto found = objects({"--output-dir", "out", file, "m/a.vrx", file}, 0);
    EXPECT_EQ(values(found, "file"), QStringList({file, "m/a.vrx", file}));
    EXPECT_EQ(values(found, "cached"), QStringList({"false", "true", "true"}));
    EXPECT_EQ(filesBelow("out"), QStringList({"a.vrx.png"}));
}

TEST_F(OutputFolderOptionTest, FailureKeepsTheOlderPicture)
{
    oldSource("a.vrx");
    ASSERT_EQ(run({"--output-dir", "out", "a.vrx"}).status, 0);
    const QByteArray picture = readFile(path("out/a.vrx.png"));
    moveTimeStamp(path("out/a.vrx.png"), -500);
    sourceOf("a.vrx", "damaged");
    const ProgramRun outcome = run({"--output-dir", "out", "a.vrx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, QStringList());
    EXPECT_EQ(outcome.err, QStringList("zrthumb: a.vrx: no thumbnail: the file ends before its header is complete"));
    EXPECT_EQ(readFile(path("out/a.vrx.png")), picture);
}

TEST_F(OutputFolderOptionTest, OutputsThatCannotBeWrittenFailAlone)
{
    oldSource("m/a.vrx");
    oldSource("m/b.vrx");
    oldSource("m/sub/c.vrx");
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("out/a.vrx.png"));
    sourceOf("out/sub", "a file");
    const QStringList arguments = {"-r", "--output-dir", "out", "m"};
    const ProgramRun outcome = run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, QStringList(native("out/b.vrx.png")));
    ASSERT_EQ(outcome.err.size(), 2);
    EXPECT_TRUE(outcome.err[0].startsWith("zrthumb: " + native("out/a.vrx.png") + ": cannot be written: "));
    EXPECT_EQ(outcome.err[1],
              "zrthumb: " + native("out/sub/c.vrx.png") + ": cannot be written: its folder cannot be made");

    const auto found = objects(arguments, 1);
    EXPECT_EQ(values(found, "error"), QStringList({"outputErr", "", "outputErr"}));
    EXPECT_EQ(values(found, "file"), QStringList({native("m/a.vrx"), native("m/b.vrx"), native("m/sub/c.vrx")}));
    EXPECT_EQ(found[2].value("reason").toString(),
              native("out/sub/c.vrx.png") + ": cannot be written: its folder cannot be made");
    EXPECT_FALSE(found[0].contains("picture"));
    EXPECT_EQ(readFile(path("out/sub")), "a file");
}

TEST_F(OutputFolderOptionTest, ListedFilesKeepTheirFoldersInTheOutputs)
{
    oldSource("m/a.vrx", kRed);
    oldSource("n/a.vrx", kGreen);
    oldSource("n/sub/b.vrx", kBlue);
    EXPECT_EQ(
        run({"-r", "--output-dir", "out", "--files-from", sourceOf("list", "m/a.vrx\n./n\nm/../n/a.vrx\n")}).status, 0);
    EXPECT_EQ(filesBelow("out"), QStringList({"m/a.vrx.png", "n/a.vrx.png", "n/sub/b.vrx.png"}));
    EXPECT_EQ(picture("out/m/a.vrx.png"), pictureOf(kRed));
    EXPECT_EQ(picture("out/n/a.vrx.png"), pictureOf(kGreen));
    // Not above the folder, whatever the names.
    const QString folder = QDir(m_folder.path()).dirName();
    const QString list = sourceOf("list", "m/../../" + folder.toUtf8() + "/m/a.vrx\n");
    EXPECT_EQ(run({"--output-dir", "deep", "--files-from", list}).status, 0);
    EXPECT_EQ(filesBelow("deep"), QStringList(folder + "/m/a.vrx.png"));
}

#ifdef Q_OS_LINUX

TEST_F(OutputFolderOptionTest, LinkInThePlaceOfAnOutputIsRefused)
{
    oldSource("a.vrx");
    const QString model = oldSource("model.vrx");
    const QByteArray bytes = readFile(model);
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("out"));
    for (const QString& target : {model, path("nowhere"), path("out")}) {
        ASSERT_TRUE(QFile::link(target, path("out/a.vrx.png")));
        const ProgramRun outcome = run({"--output-dir", "out", "a.vrx"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, QStringList("zrthumb: out/a.vrx.png: cannot be written: a link is in its place; move "
                                           "it away"));
        EXPECT_EQ(values(objects({"--output-dir", "out", "a.vrx"}, 1), "error"), QStringList("outputErr"));
        EXPECT_EQ(readFile(model), bytes);
        EXPECT_FALSE(QFileInfo::exists(path("nowhere")));
        ASSERT_TRUE(QFile::remove(path("out/a.vrx.png")));
    }
}

TEST_F(OutputFolderOptionTest, WriteProtectedFolderFailsEachFile)
{
    oldSource("a.vrx");
    oldSource("b.vrx");
    ASSERT_EQ(run({"--output-dir", "out", "a.vrx"}).status, 0);
    const QByteArray picture = readFile(path("out/a.vrx.png"));
    createDataFolder();
    const Unprivileged user({QFileInfo(dataFolder()).path(), m_folder.path()});
    setMode(path("out/a.vrx.png"), 0444);
    setMode(path("out"), 0555);
    for (const QStringList& more : {QStringList{}, QStringList{"-j", "1"}}) {
        const auto found = objects(QStringList{"--refresh", "--output-dir", "out", "a.vrx", "b.vrx"} + more, 1);
        EXPECT_EQ(values(found, "error"), QStringList({"outputErr", "outputErr"}));
        EXPECT_EQ(values(found, "reason"), QStringList({"out/a.vrx.png: cannot be written: Permission denied",
                                                        "out/b.vrx.png: cannot be written: Permission denied"}));
    }
    EXPECT_EQ(readFile(path("out/a.vrx.png")), picture);
    EXPECT_EQ(filesBelow("out"), QStringList("a.vrx.png"));
    setMode(path("out"), 0755);
}

#endif

} // namespace
} // namespace zr::test
