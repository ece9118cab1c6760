// SPDX-License-Identifier: MIT
// What zrthumb writes besides the cache: the files of --output and --sheet, and stdout.

#include "host/thumbnail_client.h"
#include "tests/host/zrthumb_fixture.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDirIterator>
#include <QImage>
#include <QMap>
#include <QProcess>

#include <filesystem>

namespace zr::test
{
namespace
{

class OutputsTest : public ZrthumbTest
{
protected:
    QImage picture(const QString& name) const { return inFull(m_folder.filePath(name)); }

    // A bitmap from the DLL has an alpha channel even if the cached picture has none.
    static QImage inFull(const QString& path) { return QImage(path).convertToFormat(QImage::Format_ARGB32); }

    // Every file of the test's folder with its contents.
    QMap<QString, QByteArray> contents() const
    {
        QMap<QString, QByteArray> files;
        QDirIterator walk(m_folder.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (walk.hasNext()) {
            const QString path = walk.next();
            files.insert(path, readFile(path));
        }
        return files;
    }
};

TEST_F(OutputsTest, OutputIsTheReturnedPicture)
{
    const QString path = source("a.vrx");
    EXPECT_EQ(run({"-o", "out.png", path}).status, 0);
    EXPECT_EQ(picture("out.png"), inFull(png("a.vrxvrx.png")));

    EXPECT_EQ(run({"-o", "small.png", "-s", "64", path}).status, 0);
    EXPECT_EQ(picture("small.png").size(), QSize(64, 64));
    EXPECT_EQ(run({"-o", "large.png", "-s", "4096", path}).status, 0);
    EXPECT_EQ(picture("large.png").size(), QSize(4096, 4096));
}

TEST_F(OutputsTest, OlderOutputIsReplaced)
{
    const QString path = source("a.vrx");
    writeFile(m_folder.filePath("out.png"), QByteArray(100000, 'x'));
    EXPECT_EQ(run({"-o", "out.png", path}).status, 0);
    EXPECT_EQ(picture("out.png").size(), QSize(400, 400));
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"a.vrx", "out.png"}));
}

TEST_F(OutputsTest, DashIsStdout)
{
    const QString path = source("a.vrx");
    ASSERT_EQ(run({"-o", "out.png", path}).status, 0);
    for (const char* const option : {"-o", "--sheet"}) {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        startProgram(process, QStringLiteral(ZRTHUMB_PROGRAM), {option, "-", path});
        ASSERT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.exitCode(), 0);
        const QByteArray bytes = process.readAllStandardOutput();
        ASSERT_FALSE(QImage::fromData(bytes, "PNG").isNull()) << option;
        if (option == QString("-o")) {
            EXPECT_EQ(bytes, readFile(m_folder.filePath("out.png")));
        }
    }
}

// Files of equal names share their PNG in the cache, which holds the picture that was made last.
TEST_F(OutputsTest, OutputsShowTheFilesOwnPicture)
{
    constexpr quint16 kRed = 0xF800;
    constexpr quint16 kBlue = 0x001F;
    const QString a = source("same/a/part.vrx", kRed);
    const QString b = source("same/b/part.vrx", kBlue);
    const QString alone = source("same/c/other.vrx", kBlue);
    ASSERT_EQ(run({"-o", "a.png", a}).status, 0);
    ASSERT_EQ(run({"-o", "b.png", b}).status, 0);
    ASSERT_NE(picture("a.png"), picture("b.png"));
    // Whatever requests came before: hits, new files, in one run or several.
    for (int round = 0; round < 2; ++round) {
        for (const QString& file : {a, b, b, a, a}) {
            const QString expected = file == a ? "a.png" : "b.png";
            ASSERT_EQ(run({"-o", "again.png", file}).status, 0);
            EXPECT_EQ(picture("again.png"), picture(expected)) << file.toStdString();
        }
    }
    ASSERT_EQ(run({"--sheet", "first.png", a, b, alone, a}).status, 0);
    ASSERT_EQ(run({"--sheet", "second.png", a, b, alone, a}).status, 0);
    EXPECT_EQ(picture("second.png"), picture("first.png"));
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    ASSERT_EQ(run({"--sheet", "fresh.png", a, b, alone, a}).status, 0);
    EXPECT_EQ(picture("fresh.png"), picture("first.png"));
}

// The cached PNG of b is not shared until a is made in the same run.
TEST_F(OutputsTest, SheetShowsOwnPicturesOfFilesOfTheSameName)
{
    const QString b = source("b/part.vrx", 0x001F);
    ASSERT_EQ(run({b}).status, 0);
    const QString a = source("a/part.vrx", 0xF800);
    ASSERT_EQ(run({"--sheet", "sheet.png", a, b}).status, 0);
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    ASSERT_EQ(run({"--sheet", "fresh.png", a, b}).status, 0);
    EXPECT_EQ(picture("sheet.png"), picture("fresh.png"));
}

TEST_F(OutputsTest, CacheKeepsItsSharedNames)
{
    const QString a = source("a/part.vrx", 0xF800);
    const QString b = source("b/part.vrx", 0x001F);
    ASSERT_EQ(run({"--sheet", "sheet.png", a, b}).status, 0);
    const ProgramRun outcome = run({a, b});
    EXPECT_EQ(outcome.out, QStringList({png("part.vrxvrx.png"), png("part.vrxvrx.png")}));
    EXPECT_EQ(QDir(thumbnailImageFolder()).entryList(QDir::Files), QStringList({"part.vrxvrx.png"}));
}

// A forgotten or mistyped name must not destroy a file.
TEST_F(OutputsTest, WrongUseDestroysNoFile)
{
    const QString model = source("a.vrx");
    source("sub/b.STL");
    const QString plain = sourceOf("model", "a model without a suffix");
    sourceOf("notes.txt", "mine");
    sourceOf("photo.jpg", "mine");
    std::filesystem::create_hard_link(plain.toStdU16String(), m_folder.filePath("hard.png").toStdU16String());
    QList<QStringList> wrong = {
        {"--sheet", "a.vrx", "sub/b.STL"}, // zrthumb --sheet *
        {"--sheet", "a.vrx"},
        {"--sheet=a.vrx", "sub/b.STL"},
        {"-o", "a.vrx", "sub/b.STL"},
        {"-oa.vrx", "sub/b.STL"},
        {"-o", "a.vrx", "a.vrx"},
        {"-o", "a.vrx", "sub/b.STL", "model"},
        {"-s", "64", "-o", "a.vrx", "a.vrx"},
        {"-o", "A.VRX", "a.vrx"},
        {"--sheet", "sub/b.STL", "-r", "."},
        {"--sheet", "-r", "."},
        {"-r", "--sheet", "a.vrx", "."},
        {"-o", "new.stl", "a.vrx"},
        {"--sheet", "new.OBJ", "a.vrx"},
        {"--sheet", "sub/new.kestravo", "a.vrx"},
        {"-o", "model", "model"},
        {"-o", "./sub/../model", "model"},
        {"-o", model.left(model.lastIndexOf('/')) + "/model", "model"},
        {"-o", "hard.png", "model"},
        {"-o", "model", "hard.png"},
        {"--sheet", "hard.png", "a.vrx", "model"},
        {"--sheet", "model", "hard.png"},
        {"-o", "same.png", "--sheet", "./same.png", "a.vrx"},
        {"-o", "-", "--sheet", "-", "a.vrx"},
        {"-o", "photo.jpg", "a.vrx"},
        {"-o", "new.JPEG", "a.vrx"},
        {"--sheet", "photo.jpg", "a.vrx"},
        {"--sheet", "new.gif", "a.vrx"},
        {"-o", "new.webp", "a.vrx"},
        {"-o", "sub", "a.vrx"},
        {"-o", "sub/", "a.vrx"},
        {"--sheet", ".", "a.vrx"},
        {"-o", "no/such/folder/x.png", "a.vrx"},
        {"--sheet", "no/such/folder/x.png", "a.vrx"},
        {"-o", "notes.txt"},
        {"-o", "notes.txt", "a.vrx", "sub/b.STL"},
        {"-o", "", "a.vrx"},
        {"--sheet", "", "a.vrx"},
        {"-o", "x.png", "-s", "0", "a.vrx"},
        {"-o", "x.png", "-s", "99999", "a.vrx"},
        {"-s", "64", "a.vrx"},
        {"-r", "-o", "x.png", "."},
        {"--output"},
        {"--nonsense", "a.vrx"},
        {"--check", "a.vrx"},
        {},
    };
#ifdef Q_OS_LINUX
    // Windows has its own kind of link, which is a file.
    ASSERT_TRUE(QFile::link(plain, m_folder.filePath("link.png")));
    wrong.append({"-o", "link.png", "model"});
    wrong.append({"--sheet", "link.png", "a.vrx", "model"});
#endif
    ASSERT_GE(wrong.size(), 40);
    const auto before = contents();
    for (const QStringList& arguments : qAsConst(wrong)) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        const ProgramRun outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, QStringList());
        EXPECT_EQ(outcome.err.size(), 2);
        EXPECT_EQ(contents(), before);
        EXPECT_FALSE(QFileInfo::exists(dataFolder())) << "no thumbnail must be made";
    }
}

TEST_F(OutputsTest, WrongNamesGetDifferentMessages)
{
    source("a.vrx");
    const QString plain = sourceOf("model", "a model without a suffix");
    std::filesystem::create_hard_link(plain.toStdU16String(), m_folder.filePath("hard.png").toStdU16String());
    const std::pair<QStringList, QString> cases[] = {
        {{"-o", "a.vrx", "a.vrx"}, "--output a.vrx: a picture is not written to a file of this kind; name a PNG"},
        {{"-o", "hard.png", "model"}, "--output hard.png: this is one of the files to make thumbnails of"},
        {{"-o", "x.jpg", "a.vrx"}, "--output x.jpg: pictures are written as PNG; name a file that ends with .png"},
        {{"--sheet", ".", "a.vrx"}, "--sheet .: this is a folder; name a PNG"},
        {{"-o", "no/x.png", "a.vrx"}, "--output no/x.png: there is no folder of that name to write it to"},
        {{"-o", "x.png", "--sheet", "x.png", "a.vrx"}, "--output and --sheet name the same file"},
    };
    for (const auto& [arguments, reason] : cases)
        EXPECT_EQ(run(arguments).err.first(), "zrthumb: " + reason);
}

// Names without the suffix of a model or of another picture format are the user's choice.
TEST_F(OutputsTest, OtherNamesGetAPng)
{
    for (const char* const name : {"x.png", "x.PNG", "x", "x.png.tmp", "x.png~", "x.v2"}) {
        ASSERT_EQ(run({"-o", name, source("a.vrx")}).status, 0) << name;
        EXPECT_TRUE(readFile(m_folder.filePath(name)).startsWith("\x89PNG")) << name;
    }
}

TEST_F(OutputsTest, InvisibleModelsAreReported)
{
    const QString slashed = sourceOf("s.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 1\nf 1/1/1 2/2/2 3/3/3\n");
    const ProgramRun outcome = run({slashed});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, QStringList({png("s.objobj.png")}));
    const QString whatToDo = talksToServer()
                                 ? ", which are not understood"
                                 : ": use '--obj standard' with -o, --output-dir or --sheet, which reads them";
    EXPECT_EQ(outcome.err, QStringList({"zrthumb: " + slashed +
                                        ": nothing can be seen in its thumbnail; mostly because its faces have "
                                        "slashes ('f 1/2/3') or negative numbers" +
                                        whatToDo}));
    EXPECT_EQ(run({"-q", slashed}).err, QStringList());
    EXPECT_EQ(run({sourceOf("seen.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 0 1 2\nf 0 2 1\n")}).err, QStringList());
}

TEST_F(OutputsTest, SheetShowsThePicturesOfTheRun)
{
    const ProgramRun outcome = run({"--sheet", "sheet.png", source("a.vrx"), "missing", source("b.vrx", 0x001F)});
    EXPECT_EQ(outcome.status, 1);
    const QImage sheet(m_folder.filePath("sheet.png"));
    ASSERT_EQ(sheet.size(), QSize(648, 246));
    const auto pictureIn = [&sheet](int column) { return sheet.copy(12 + column * 212, 12, 200, 200); };
    const auto pictureOf = [](const QString& name) {
        const QImage picture = QImage(png(name)).convertToFormat(QImage::Format_ARGB32);
        return picture.scaled(200, 200, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    };
    EXPECT_EQ(pictureIn(0), pictureOf("a.vrxvrx.png"));
    EXPECT_EQ(pictureIn(1).pixel(0, 0), qRgb(232, 228, 226)) << "the failure has no cell";
    EXPECT_EQ(pictureIn(2), pictureOf("b.vrxvrx.png"));
}

TEST_F(OutputsTest, SheetOfManyFilesIsSplit)
{
    QStringList arguments = {"--sheet", "sheet.png"};
    for (int i = 0; i < 503; ++i)
        arguments.append("missing");
    const ProgramRun outcome = run(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err.size(), 503);
    EXPECT_EQ(QImage(m_folder.filePath("sheet.png")).size(), QSize(2132, 11712));
    EXPECT_EQ(QImage(m_folder.filePath("sheet-2.png")).size(), QSize(648, 246));
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::Files), QStringList({"sheet-2.png", "sheet.png"}));
}

} // namespace
} // namespace zr::test
