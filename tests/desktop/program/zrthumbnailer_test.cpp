// SPDX-License-Identifier: MIT
// The program as a file manager runs it.

#include "readers/reader_table.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/stl_bytes.h"
#include "tools/samples/vrx_bytes.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

namespace zr::test
{
namespace
{

#if defined(__SANITIZE_ADDRESS__)
const QStringList kFirstArguments = {"--memory-limit=0"}; // AddressSanitizer reserves more than any
#else
const QStringList kFirstArguments;
#endif

class ZrthumbnailerTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        samples = new QTemporaryDir;
        const ProgramRun made = runProgram(MAKE_SAMPLES_PROGRAM, {samples->path()}, samples->path());
        ASSERT_EQ(made.status, 0);
    }
    static void TearDownTestSuite() { delete samples; }

    void SetUp() override
    {
        // No home and no display: nothing but the two files.
        for (const QString& name : m_environment.keys())
            if (name != "PATH" && !name.startsWith("ASAN") && !name.startsWith("LSAN"))
                m_environment.remove(name);
        m_environment.insert("HOME", m_folder.filePath("home"));
        m_environment.insert("ASAN_OPTIONS", "detect_leaks=0"); // which makes a process
    }

    QString file(const QString& name) const { return m_folder.filePath(name); }
    QString write(const QString& name, const QByteArray& bytes) const { return writeFile(file(name), bytes); }

    ProgramRun run(const QStringList& arguments) const
    {
        return runProgram(ZRTHUMBNAILER_PROGRAM, kFirstArguments + arguments, m_folder.path(), m_environment);
    }

    // The picture of a run that has to succeed.
    QImage pictureOf(const QString& input, int sizePx) const
    {
        const ProgramRun result = run({"-s", QString::number(sizePx), input, file("out.png")});
        EXPECT_EQ(result.status, 0) << input.toStdString();
        EXPECT_EQ(result.err, QStringList());
        EXPECT_EQ(result.out, QStringList());
        const QImage picture(file("out.png"), "PNG");
        EXPECT_TRUE(QFile::remove(file("out.png")));
        return picture;
    }

    static QTemporaryDir* samples;
    QTemporaryDir m_folder;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

QTemporaryDir* ZrthumbnailerTest::samples = nullptr;

// Of nearly all samples. The others are larger.
constexpr int kPreviewSidePx = 400;

bool isModel(const QString& name)
{
    return QStringList({"stl", "obj", "slc"}).contains(QFileInfo(name).suffix());
}

TEST_F(ZrthumbnailerTest, EverySampleHasAPictureOfEverySize)
{
    QStringList missing = supportedSuffixes();
    for (const QFileInfo& sample : QDir(samples->path()).entryInfoList(QDir::Files)) {
        missing.removeAll(sample.suffix());
        for (const int size : {16, 128, 256, 380, 512, 1024}) {
            SCOPED_TRACE(sample.fileName().toStdString() + ' ' + std::to_string(size));
            const QImage picture = pictureOf(sample.filePath(), size);
            const int side = std::max(picture.width(), picture.height());
            EXPECT_LE(side, size);
            if (isModel(sample.fileName()) || size <= kPreviewSidePx)
                EXPECT_EQ(side, size);
            else
                EXPECT_GE(side, kPreviewSidePx);
        }
    }
    EXPECT_EQ(missing, QStringList());
}

TEST_F(ZrthumbnailerTest, NothingElseIsWritten)
{
    write("part.stl", readFile(samples->filePath("gear.stl")));
    EXPECT_EQ(run({"part.stl", "out.png"}).status, 0);
    EXPECT_EQ(run({"missing.stl", "none.png"}).status, 1);
    EXPECT_EQ(QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList({"out.png", "part.stl"}));
}

TEST_F(ZrthumbnailerTest, NamesMayHaveAnyCharacters)
{
    const QByteArray model = readFile(samples->filePath("gear.stl"));
    for (const char* const bytes : {"a b.stl", "100%.stl", "a#b?c.stl", "t\xc3\xbcr-\xe6\xa8\xa1.stl", "line\nfeed.stl",
                                    "'quoted\".stl", "GEAR.STL", "-s.stl"}) {
        const QString name = QString::fromUtf8(bytes);
        write(name, model);
        EXPECT_EQ(run({"--", name, "out.png"}).status, 0) << name.toStdString();
        EXPECT_FALSE(QImage(file("out.png"), "PNG").isNull());
        const QByteArray uri = "file://" + file(name).toUtf8().toPercentEncoding("/");
        EXPECT_EQ(run({uri, "-s", "64", "uri.png"}).status, 0) << uri.toStdString();
        EXPECT_EQ(QImage(file("uri.png"), "PNG").width(), 64);
    }
}

TEST_F(ZrthumbnailerTest, NamesNeedNotBeText)
{
    write("gear.stl", readFile(samples->filePath("gear.stl")));
    const QString script = "mv gear.stl \"$(printf '\\377.stl')\" && \"$0\" --memory-limit 0 \"$(printf '\\377.stl')\" "
                           "\"$(printf '\\376.png')\" && "
                           "mv \"$(printf '\\376.png')\" out.png && rm \"$(printf '\\377.stl')\"";
    const ProgramRun result =
        runProgram("/bin/sh", {"-c", script, ZRTHUMBNAILER_PROGRAM}, m_folder.path(), m_environment);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(QImage(file("out.png"), "PNG").width(), 256);
}

TEST_F(ZrthumbnailerTest, PictureGoesToStdout)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    startProgram(process, ZRTHUMBNAILER_PROGRAM, {"--memory-limit=0", samples->filePath("rook.vrx"), "-"});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(QImage::fromData(process.readAllStandardOutput(), "PNG").width(), 256);
}

struct FailureCase {
    const char* name;
    QByteArray bytes;
    const char* reason;
};

TEST_F(ZrthumbnailerTest, FailuresAreSaidOnOneLineAndLeaveNoPicture)
{
    const FailureCase cases[] = {
        {"empty.stl", "", "the file is empty"},
        {"empty.vrx", "", "the file is empty"},
        {"note.txt", "text", "this kind of file is not supported"},
        {"none", "text", "this kind of file is not supported"},
        {"part.photon", "text", "this kind of file is not supported"},
        {"cut.stl", QByteArray(84, '\1'), "the file ends before all of its triangles, or is no STL file"},
        {"short.vrx", "short", "the file ends before its header is complete"},
        {"flat.stl", samples::binaryStlBytes({}),
         "there is nothing to draw: the model is empty, or the file is damaged"},
    };
    for (const FailureCase& row : cases) {
        write(row.name, row.bytes);
        const ProgramRun result = run({row.name, "out.png"});
        EXPECT_EQ(result.status, 1) << row.name;
        EXPECT_EQ(result.err, QStringList(QString("zrthumbnailer: %1: no thumbnail: %2").arg(row.name, row.reason)));
        EXPECT_EQ(readFile(file("out.png")), "");
    }
}

TEST_F(ZrthumbnailerTest, OlderPictureSurvivesAFailure)
{
    write("cut.stl", QByteArray(84, '\1'));
    const QByteArray older = "\x89PNG\r\n\x1a\nolder";
    write("out.png", older);
    EXPECT_EQ(run({"cut.stl", "out.png"}).status, 1);
    EXPECT_EQ(readFile(file("out.png")), older);
}

// Qt reads its rules for warnings from a file before the first one, which would be the end. A negative offset in this
// format makes it warn of a seek.
TEST_F(ZrthumbnailerTest, WarningOfQtEndsNothing)
{
    write("negative.svgx", QByteArray(6000, '\xff'));
    const ProgramRun result = run({"negative.svgx", "out.png"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, QStringList());
}

// The back of a triangle.
TEST_F(ZrthumbnailerTest, ModelOfWhichNothingIsSeenFails)
{
    write("back.obj", "v 0 0 0\nv 0 10 0\nv 10 0 0\nf 1 2 3\n");
    const ProgramRun result = run({"back.obj", "out.png"});
    EXPECT_EQ(result.status, 1);
    ASSERT_EQ(result.err.size(), 1);
    EXPECT_TRUE(result.err[0].startsWith("zrthumbnailer: back.obj: no thumbnail: nothing can be seen in its thumbnail"))
        << result.err[0].toStdString();
}

TEST_F(ZrthumbnailerTest, WrongUsageChangesNothing)
{
    const QByteArray model = readFile(samples->filePath("gear.stl"));
    write("a.stl", model);
    write("b.stl", model);
    for (const QStringList& arguments : {QStringList{"a.stl", "b.stl"}, {"a.stl", "a.stl"}, {"a.stl"}, {}}) {
        const ProgramRun result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_FALSE(result.err.isEmpty());
    }
    EXPECT_EQ(readFile(file("a.stl")), model);
    EXPECT_EQ(readFile(file("b.stl")), model);
}

// AddressSanitizer itself ends a program that is out of memory.
#if !defined(__SANITIZE_ADDRESS__)
TEST_F(ZrthumbnailerTest, ModelBeyondTheMemoryLimitFails)
{
    write("many.stl", samples::binaryStlBytes(std::vector<samples::ModelTriangle>(3000000)));
    const ProgramRun result = run({"--memory-limit", "160", "many.stl", "out.png"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, QStringList("zrthumbnailer: many.stl: no thumbnail: there is not enough memory for it; "
                                      "see --memory-limit"));
}
#endif

TEST_F(ZrthumbnailerTest, WorksWithoutAnyStandardStream)
{
    write("gear.stl", readFile(samples->filePath("gear.stl")));
    const ProgramRun result =
        runProgram("/bin/sh", {"-c", "\"$0\" --memory-limit 0 gear.stl out.png <&- >&- 2>&-", ZRTHUMBNAILER_PROGRAM},
                   m_folder.path(), m_environment);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(QImage(file("out.png"), "PNG").width(), 256);
}

} // namespace
} // namespace zr::test
