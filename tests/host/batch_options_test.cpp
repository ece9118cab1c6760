// SPDX-License-Identifier: MIT
// Runs over many files: lists of names, --output-dir, and lines that programs can read.

#include "tests/host/zrthumb_fixture.h"
#include "tests/support/qt_printers.h"

#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>

#ifdef Q_OS_LINUX
#include "tests/support/unprivileged.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zr::test
{
namespace
{

constexpr quint16 kRed = 0xF800;
constexpr quint16 kGreen = 0x07E0;
constexpr quint16 kBlue = 0x001F;

/// What a run prints, byte for byte.
struct RawRun {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

class BatchOptionsTest : public ZrthumbTest
{
protected:
    RawRun runRaw(const QStringList& arguments, const QByteArray& input = {}) const
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(m_folder.path());
        startProgram(process, QStringLiteral(ZRTHUMB_PROGRAM), arguments);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(120000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    // The objects on stdout, one a line.
    QList<QJsonObject> objects(const QStringList& arguments, int status, const QByteArray& input = {}) const
    {
        const RawRun outcome = runRaw(QStringList("--json") + arguments, input);
        EXPECT_EQ(outcome.status, status) << outcome.err.toStdString();
        QList<QJsonObject> found;
        QList<QByteArray> lines = outcome.out.split('\n');
        EXPECT_EQ(lines.takeLast(), "") << "a line has no end";
        for (const QByteArray& line : qAsConst(lines)) {
            QJsonParseError error;
            found += QJsonDocument::fromJson(line, &error).object();
            EXPECT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
        }
        return found;
    }

    // The values of one key.
    static QStringList values(const QList<QJsonObject>& objects, const QString& key)
    {
        QStringList texts;
        for (const QJsonObject& object : objects)
            texts += object.value(key).toVariant().toString();
        return texts;
    }

    // A file that was there before the run.
    QString oldSource(const QString& name, quint16 word = kRed) const
    {
        const QString path = source(name, word);
        moveTimeStamp(path, -1000);
        return path;
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    // What a file of that colour looks like in full size.
    QImage pictureOf(quint16 word) const
    {
        const QString name = QStringLiteral("reference%1").arg(word);
        EXPECT_EQ(run({"-o", name + ".png", source(name + ".vrx", word)}).status, 0);
        const QImage reference = picture(name + ".png");
        EXPECT_TRUE(QFile::remove(path(name + ".png")) && QFile::remove(path(name + ".vrx")));
        return reference;
    }

    // A bitmap from the DLL has an alpha channel even if the cached picture has none.
    QImage picture(const QString& name) const { return QImage(path(name)).convertToFormat(QImage::Format_ARGB32); }

    QDateTime time(const QString& name) const { return QFileInfo(path(name)).lastModified(); }

    // The files below a folder, with "/".
    QStringList filesBelow(const QString& folder) const
    {
        QStringList found;
        QDirIterator walk(path(folder), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
        while (walk.hasNext())
            found += walk.next().mid(path(folder).size() + 1);
        found.sort();
        return found;
    }

    QMap<QString, QByteArray> contents() const
    {
        QMap<QString, QByteArray> files;
        for (const QString& name : filesBelow("."))
            files.insert(name, readFile(path(name)));
        return files;
    }
};

QString native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

TEST_F(BatchOptionsTest, OutputFolderIsMadeAndKeepsTheTree)
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

TEST_F(BatchOptionsTest, PicturesThatAreNewerThanTheirFilesAreKept)
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

TEST_F(BatchOptionsTest, ChangedFileGetsANewPicture)
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
TEST_F(BatchOptionsTest, SheetGoesWithAFolder)
{
    oldSource("a.vrx");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(run({"--output-dir", "out", "--sheet", "sheet.png", "a.vrx"}).status, 0);
        EXPECT_FALSE(QImage(path("sheet.png")).isNull());
        EXPECT_FALSE(QImage(path("out/a.vrx.png")).isNull());
        ASSERT_TRUE(QFile::remove(path("sheet.png")));
    }
}

TEST_F(BatchOptionsTest, EqualNamesHaveTheirOwnPictures)
{
    const quint16 words[] = {kRed, kGreen, kBlue};
    for (int i = 0; i < 3; ++i)
        oldSource(QStringLiteral("m/%1/part.vrx").arg(i), words[i]);
    // With an empty cache, with a full one, and in processes that work side by side.
    for (const QStringList& more : {QStringList{}, QStringList{}, QStringList{"-j", "3"}}) {
        ASSERT_EQ(run(QStringList{"-r", "--refresh", "--output-dir", "out", "m"} + more).status, 0);
        EXPECT_EQ(picture("out/0/part.vrx.png"), pictureOf(kRed));
        EXPECT_EQ(picture("out/1/part.vrx.png"), pictureOf(kGreen));
        EXPECT_EQ(picture("out/2/part.vrx.png"), pictureOf(kBlue));
    }
}

TEST_F(BatchOptionsTest, FileGivenTwiceHasOneLineEach)
{
    const QString file = oldSource("m/a.vrx");
    const auto found = objects({"--output-dir", "out", file, "m/a.vrx", file}, 0);
    EXPECT_EQ(values(found, "file"), QStringList({file, "m/a.vrx", file}));
    EXPECT_EQ(values(found, "cached"), QStringList({"false", "true", "true"}));
    EXPECT_EQ(filesBelow("out"), QStringList({"a.vrx.png"}));
}

TEST_F(BatchOptionsTest, FailureKeepsTheOlderPicture)
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

TEST_F(BatchOptionsTest, OutputsThatCannotBeWrittenFailAlone)
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

TEST_F(BatchOptionsTest, ListedFilesKeepTheirFoldersInTheOutputs)
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

TEST_F(BatchOptionsTest, LinkInThePlaceOfAnOutputIsRefused)
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

TEST_F(BatchOptionsTest, WriteProtectedFolderFailsEachFile)
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

// Names of files are any bytes but zero and the slash.
class AnyNamesTest : public BatchOptionsTest
{
protected:
    void SetUp() override
    {
        BatchOptionsTest::SetUp();
        ASSERT_TRUE(QDir(m_folder.path()).mkdir("m"));
        const QByteArray file = readFile(oldSource("a.vrx"));
        for (const QByteArray& name : m_names)
            copyTo("/m/" + name, file);
    }

    // Qt cannot remove all of these.
    void TearDown() override
    {
        EXPECT_EQ(runProgram("/bin/sh", {"-c", "rm -rf ./*"}, m_folder.path()).status, 0);
        BatchOptionsTest::TearDown();
    }

    void copyTo(const QByteArray& name, const QByteArray& bytes) const
    {
        const int file = open((QFile::encodeName(m_folder.path()) + name).constData(), O_CREAT | O_WRONLY, 0644);
        ASSERT_NE(file, -1);
        EXPECT_EQ(write(file, bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
        timespec times[2] = {};
        times[1].tv_sec = times[0].tv_sec = 1000000000;
        EXPECT_EQ(futimens(file, times), 0);
        close(file);
    }

    bool exists(const QByteArray& name) const
    {
        struct stat status = {};
        return stat((QFile::encodeName(m_folder.path()) + '/' + name).constData(), &status) == 0;
    }

    // The list as "m/NAME" with zero bytes.
    QByteArray list() const
    {
        QByteArray bytes;
        for (const QByteArray& name : m_names)
            bytes += "m/" + name + '\0';
        return bytes;
    }

    // What the object means by the key.
    static QByteArray name(const QJsonObject& object, const QString& key)
    {
        const QByteArray bytes = QByteArray::fromBase64(object.value(key + "Bytes").toString().toLatin1());
        EXPECT_EQ(bytes.isEmpty(), !object.value(key).toString().contains(QChar(QChar::ReplacementCharacter)));
        return bytes.isEmpty() ? object.value(key).toString().toUtf8() : bytes;
    }

    const QList<QByteArray> m_names = {
        "two\nlines.vrx",
        "\"quotes\" 'and' \\.vrx",
        "\xFF\xFE.vrx",
        "\xEF\xBB\xBFmark.vrx",
        "\xED\xB2\x80.vrx",
        "\xF0\x9F\x8E.vrx",
        "\xE4\xB8\xAD.vrx",
        "\x1B[31m\t.vrx",
        " .vrx",
        "-q.vrx",
    };
};

TEST_F(AnyNamesTest, PassThroughListsAndOutputs)
{
    for (const char* const locale : {"C.UTF-8", "C"}) {
        SCOPED_TRACE(locale);
        m_environment.insert("LC_ALL", locale);
        const RawRun outcome =
            runRaw({"-0", "--no-cache", "--refresh", "--output-dir", "out", "--files-from", "-"}, list());
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        QByteArray expected;
        for (const QByteArray& name : m_names) {
            expected += "out/m/" + name + ".png" + '\0';
            EXPECT_TRUE(exists("out/m/" + name + ".png")) << name.toHex(' ').toStdString();
        }
        EXPECT_EQ(outcome.out, expected);
        ASSERT_EQ(runProgram("/bin/rm", {"-r", "out"}, m_folder.path()).status, 0);
    }
}

TEST_F(AnyNamesTest, AreWholeInJson)
{
    for (const QStringList& more : {QStringList{}, QStringList{"-j", "2"}}) {
        const auto found = objects(
            QStringList{"-0", "--no-cache", "--refresh", "--output-dir", "out", "--files-from", "-"} + more, 0, list());
        ASSERT_EQ(found.size(), m_names.size());
        for (int i = 0; i < found.size(); ++i) {
            EXPECT_EQ(name(found[i], "file"), "m/" + m_names[i]);
            EXPECT_EQ(name(found[i], "picture"), "out/m/" + m_names[i] + ".png");
        }
    }
}

// Not a mark of an encoding, as lists of lines may have one.
TEST_F(AnyNamesTest, MayBeTheFirstOfAList)
{
    const QByteArray bytes = readFile(path("a.vrx"));
    for (const QByteArray& first : m_names) {
        copyTo('/' + first, bytes);
        const auto found = objects({"-0", "--no-cache", "--output-dir", "out", "--files-from", "-"}, 0, first + '\0');
        ASSERT_EQ(found.size(), 1);
        EXPECT_TRUE(exists("out/" + first + ".png")) << first.toHex(' ').toStdString();
    }
}

// In the order in which a walk finds them.
TEST_F(AnyNamesTest, AreFoundInFolders)
{
    const auto found = objects({"-r", "--no-cache", "--output-dir", "out", "m"}, 0);
    QList<QByteArray> names;
    for (const QJsonObject& object : found)
        names += name(object, "file").mid(2);
    QList<QByteArray> expected = m_names;
    std::sort(names.begin(), names.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(names, expected);
}

TEST_F(AnyNamesTest, CannotBeRecordedUnlessTheyAreText)
{
    const auto found = objects({"-0", "--files-from", "-"}, 1, list());
    ASSERT_EQ(found.size(), m_names.size());
    for (int i = 0; i < found.size(); ++i) {
        const bool isText = QString::fromUtf8(m_names[i]).toUtf8() == m_names[i] || m_names[i].contains("mark");
        const bool hasApostrophe = m_names[i].contains('\'');
        EXPECT_EQ(name(found[i], "file"), "m/" + m_names[i]);
        EXPECT_EQ(found[i].value("error").toString(), !isText         ? "nameIsNotText"
                                                      : hasApostrophe ? "cacheErr"
                                                                      : QString());
    }
    const RawRun outcome = runRaw({"-0", "--files-from", "-"}, QByteArray("m/\xFF\xFE.vrx\0", 9));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "zrthumb: m/??.vrx: no thumbnail: its name is not text, which the cache cannot record: "
                           "rename it, or use --no-cache with --output-dir or --sheet\n");
}

#endif

} // namespace
} // namespace zr::test
