// SPDX-License-Identifier: MIT
// Lists of names, lines that programs can read, and command lines that are refused.

#include "tests/host/batch_fixture.h"

#ifdef Q_OS_LINUX
#include "tests/support/unprivileged.h"
#endif

namespace zr::test
{
namespace
{

class BatchOptionsTest : public BatchTest
{
};

// A forgotten or mistyped name must not cost a file.
TEST_F(BatchOptionsTest, WrongUsageChangesNothing)
{
    oldSource("a.vrx");
    oldSource("m/a.vrx");
    oldSource("n/a.vrx");
    sourceOf("a.vrx.png", "mine");
    sourceOf("notes.txt", "mine");
    sourceOf("list", "a.vrx\nm/a.vrx\n");
    sourceOf("zeros", QByteArray("a.vrx\0m/a.vrx\0", 14));
    sourceOf("utf16", QByteArray("\xFF\xFE"
                                 "a\0\n\0",
                                 6));
    const QList<QStringList> wrong = {
        {"--output-dir", "a.vrx", "m/a.vrx"}, // zrthumb --output-dir *
        {"--output-dir", "notes.txt", "a.vrx"},
        {"--output-dir=a.vrx", "a.vrx"},
        {"--output-dir", "-r", "m"},
        {"--output-dir", "--", "m"},
        {"--output-dir", "no/out", "a.vrx"},
        {"--output-dir", "", "a.vrx"},
        {"--output-dir", "out"},
        {"--output-dir", "out", "a.vrx", "m/a.vrx"},
        {"--output-dir", "out", "-r", "m", "n"},
        {"--output-dir", ".", "a.vrx", "a.vrx.png"},
        {"--output-dir", "out", "-o", "x.png", "a.vrx"},
        {"--output-dir", "out", "--sheet", "out/a.vrx.png", "a.vrx"},
        {"--output-dir", "out", "--sheet", "a.vrx", "a.vrx"},
        {"--output-dir", "out", "-s", "5000", "a.vrx"},
        {"--output-dir", "out", "-s", "a.vrx", "m/a.vrx"},
        {"--output-dir", ".", "--sheet", "a.vrx.png", "a.vrx"},
        {"--output_dir", "out", "a.vrx"},
        {"-output-dir", "out", "a.vrx"},
        {"--refresh", "a.vrx"},
        {"--files-from", "missing"},
        {"--files-from", "m"},
        {"--files-from", "zeros"},
        {"--files-from", "utf16"},
        {"--files-from", "list", "a.vrx"},
        {"--files-from", "list", "-o", "x.png"},
        {"--files-from", "list", "-j", "-2"},
        {"--json", "-o", "-", "a.vrx"},
        {"-j", "a.vrx", "m/a.vrx"},
        {"-j", "2", "-o", "x.png", "a.vrx"},
        {"--worker-memory", "1", "a.vrx"},
        {"--worker", "a.vrx"},
        {"a.vrx", "--worker"},
    };
    const auto before = contents();
    for (const QStringList& arguments : wrong) {
        const ProgramRun outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments.join(' ').toStdString();
        EXPECT_EQ(outcome.out, QStringList()) << arguments.join(' ').toStdString();
        EXPECT_TRUE(outcome.err.value(0).startsWith("zrthumb: ")) << arguments.join(' ').toStdString();
        EXPECT_EQ(contents(), before) << arguments.join(' ').toStdString();
        EXPECT_FALSE(QFileInfo::exists(path("out"))) << arguments.join(' ').toStdString();
    }
    EXPECT_EQ(runRaw({"--worker"}).status, 2);
    EXPECT_EQ(runRaw({"--worker"}, "a.vrx\n").status, 2);
    EXPECT_EQ(contents(), before);
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));
}

TEST_F(BatchOptionsTest, NamesComeFromFilesAndStdin)
{
    oldSource("m/a.vrx", kRed);
    oldSource("m/sub/b.vrx", kGreen);
    oldSource("c d.vrx", kBlue);
    const QByteArray list = "m\nc d.vrx\n\nmissing.vrx";
    const QStringList files = {native("m/a.vrx"), native("m/sub/b.vrx"), "c d.vrx", "missing.vrx"};
    for (const QString& from : {sourceOf("list", list), QString("-")}) {
        const auto found = objects({"-r", "--files-from", from}, 1, list);
        EXPECT_EQ(values(found, "file"), files);
        EXPECT_EQ(values(found, "error"), QStringList({"", "", "", "noSuchFile"}));
    }
    QByteArray zeros = list;
    zeros.replace("\n\n", "\n").replace('\n', '\0');
    EXPECT_EQ(values(objects({"-r0", "--files-from", "-"}, 1, zeros), "file"), files);
    // Without -r, a folder is no file; an empty list is nothing to do.
    EXPECT_EQ(values(objects({"--files-from", "-"}, 1, "m\n"), "error"), QStringList("isFolder"));
    EXPECT_EQ(objects({"--files-from", "-"}, 0), QList<QJsonObject>());
}

TEST_F(BatchOptionsTest, PrintedNamesEndWithZeroBytes)
{
    oldSource("a.vrx");
    oldSource("b.vrx");
    const RawRun outcome = runRaw({"-0", "--output-dir", "out", "a.vrx", "missing.vrx", "b.vrx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, native("out/a.vrx.png").toUtf8() + '\0' + native("out/b.vrx.png").toUtf8() + '\0');
    EXPECT_TRUE(outcome.err.startsWith("zrthumb: missing.vrx: no thumbnail: no such file"));
    EXPECT_TRUE(outcome.err.endsWith('\n'));
}

TEST_F(BatchOptionsTest, JsonTellsWhatTheCacheHas)
{
    oldSource("a.vrx");
    const auto first = objects({"a.vrx", "missing.vrx"}, 1);
    ASSERT_EQ(first.size(), 2);
    EXPECT_EQ(first[0].keys(), QStringList({"cached", "file", "height", "milliseconds", "picture", "width"}));
    EXPECT_EQ(first[0].value("file").toString(), "a.vrx");
    EXPECT_EQ(first[0].value("picture").toString(), png("a.vrxvrx.png"));
    EXPECT_EQ(first[0].value("width").toInt(), 400);
    EXPECT_EQ(first[0].value("height").toInt(), 400);
    EXPECT_FALSE(first[0].value("cached").toBool());
    EXPECT_GT(first[0].value("milliseconds").toDouble(), 0);
    EXPECT_EQ(first[1], QJsonObject({{"file", "missing.vrx"}, {"error", "noSuchFile"}, {"reason", "no such file"}}));
    EXPECT_TRUE(objects({"a.vrx"}, 0).value(0).value("cached").toBool());
    EXPECT_EQ(values(objects({"-o", "x.png", "-s", "64", "a.vrx"}, 0), "picture"), QStringList("x.png"));
    EXPECT_EQ(values(objects({"--sheet", "s.png", "a.vrx"}, 0), "picture"), QStringList(png("a.vrxvrx.png")));
}

TEST_F(BatchOptionsTest, QuietJsonHasFailuresOnly)
{
    oldSource("a.vrx");
    EXPECT_EQ(runRaw({"--json", "-q", "a.vrx"}).out, "");
    const auto found = objects({"-q", "a.vrx", "missing.vrx", "a.vrx"}, 1);
    EXPECT_EQ(values(found, "file"), QStringList("missing.vrx"));
}

#ifdef Q_OS_LINUX

TEST_F(BatchOptionsTest, FoldersThatCannotBeListedHaveALine)
{
    oldSource("m/a.vrx");
    oldSource("m/locked/b.vrx");
    createDataFolder();
    const Unprivileged user({QFileInfo(dataFolder()).path(), m_folder.path()});
    setMode(path("m/locked"), 0);
    for (const QStringList& more : {QStringList{}, QStringList{"-q"}}) {
        auto found = objects(more + QStringList{"-r", "m"}, 1);
        EXPECT_EQ(found.takeFirst(),
                  QJsonObject(
                      {{"file", "m/locked"}, {"error", "listErr"}, {"reason", "cannot be listed: Permission denied"}}));
        EXPECT_EQ(values(found, "file"), more.isEmpty() ? QStringList("m/a.vrx") : QStringList());
    }
    EXPECT_EQ(run({"-r", "m"}).err, QStringList("zrthumb: m/locked: cannot be listed: Permission denied"));
    setMode(path("m/locked"), 0755);
}

#endif

} // namespace
} // namespace zr::test
