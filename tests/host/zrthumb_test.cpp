// SPDX-License-Identifier: MIT
// The program as a user runs it.

#include "core/data_location.h"
#include "tests/host/zrthumb_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"
#include "tools/samples/vrx_bytes.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

namespace zr::test
{
namespace
{

TEST_F(ZrthumbTest, PrintsTheCachedPngOfEachFileInAFreshProfile)
{
    const ProgramRun outcome = run({source("b.vrx"), source("a.vrxdlp")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, QStringList({png("b.vrxvrx.png"), png("a.vrxdlpvrxdlp.png")}));
    EXPECT_EQ(outcome.err, QStringList());
    for (const QString& path : outcome.out)
        EXPECT_EQ(QImage(path).size(), QSize(400, 400));
}

TEST_F(ZrthumbTest, FirstRequestOfAFreshProfileIsRepeatedOnce)
{
    const QString path = source("a.vrx");
    EXPECT_EQ(run({path}).status, 0);
    // The first attempt's lines are lost until its job makes the folder.
    EXPECT_EQ(logMessages(), QStringList({"84  throw ", "69  throw ", "73 getImage False",
                                          "37 in 2 " + QDir::toNativeSeparators(path), "63 app after", "84  throw "}));
}

TEST_F(ZrthumbTest, SecondRunIsACacheHit)
{
    const QString path = source("a.vrx");
    ASSERT_EQ(run({path}).status, 0);
    ASSERT_TRUE(QFile::remove(defaultLogPath()));
    moveTimeStamp(png("a.vrxvrx.png"), -1000);
    const auto before = QFileInfo(png("a.vrxvrx.png")).lastModified();

    const ProgramRun outcome = run({path});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, QStringList({png("a.vrxvrx.png")}));
    EXPECT_EQ(logMessages(),
              QStringList({"37 in 2 " + QDir::toNativeSeparators(path), "61 app start", "63 app after"}));
    EXPECT_EQ(QFileInfo(png("a.vrxvrx.png")).lastModified(), before);
}

TEST_F(ZrthumbTest, RelativePathsAreMadeAbsolute)
{
    const QString path = source("sub/a.vrx");
    ASSERT_EQ(run({path}).status, 0);
    ASSERT_TRUE(QFile::remove(defaultLogPath()));
    EXPECT_EQ(run({"sub/a.vrx"}).status, 0);
    EXPECT_EQ(logMessages().first(), "37 in 2 " + QDir::toNativeSeparators(path));
}

TEST_F(ZrthumbTest, FailuresAreReportedAndDoNotStopTheRun)
{
    const QString good = source("good.vrx");
    const QString shortFile = sourceOf("short.vrx", "x");
    const QString empty = sourceOf("empty.vrx", "");
    const QString other = sourceOf("other.txt", "x");
    samples::VrxParts hostile;
    hostile.preview.width = 1;
    hostile.preview.height = 1;
    hostile.preview.dataSize = -1;
    const QString outOfMemory = sourceOf("memory.vrx", samples::vrxBytes(hostile));

    const ProgramRun outcome = run({"missing.vrx", shortFile, empty, other, outOfMemory, m_folder.path(), good});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, QStringList({png("good.vrxvrx.png")}));
    EXPECT_EQ(
        outcome.err,
        QStringList({
            "zrthumb: missing.vrx: no thumbnail: no such file",
            "zrthumb: " + shortFile + ": no thumbnail: the file ends before its header is complete",
            "zrthumb: " + empty + ": no thumbnail: the file is empty",
            "zrthumb: " + other + ": no thumbnail: this kind of file is not supported",
            "zrthumb: " + outOfMemory + ": no thumbnail: the file is damaged, or there is not enough memory for it",
            "zrthumb: " + m_folder.path() +
                ": no thumbnail: it is a folder (--recursive makes thumbnails of the files below it)",
        }));
    EXPECT_EQ(QDir(thumbnailImageFolder()).entryList(QDir::Files), QStringList({"good.vrxvrx.png"}));
}

TEST_F(ZrthumbTest, FolderMeansTheSupportedFilesBelowIt)
{
    for (const char* name : {"m/b.vrx", "m/a/z.VRXDLP", "m/a/c.vrx", "m/ignored.txt", "m/ignored.photon"})
        source(name);
    const ProgramRun outcome = run({"-r", "m"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, QStringList({png("c.vrxvrx.png"), png("z.VRXDLPVRXDLP.png"), png("b.vrxvrx.png")}));
    EXPECT_EQ(outcome.err, QStringList());
}

TEST_F(ZrthumbTest, QuietPrintsFailuresOnly)
{
    const ProgramRun outcome = run({"-q", source("a.vrx"), "missing"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, QStringList());
    EXPECT_EQ(outcome.err, QStringList({"zrthumb: missing: no thumbnail: no such file"}));
}

TEST_F(ZrthumbTest, ControlCharactersOfNamesDoNotReachTheTerminal)
{
    const ProgramRun outcome = run({"bad\x1b[31m\nname"});
    EXPECT_EQ(outcome.err, QStringList({"zrthumb: bad?[31m?name: no thumbnail: no such file"}));
}

TEST_F(ZrthumbTest, WrongUsageEndsWithTwo)
{
    const ProgramRun outcome = run({"--nonsense"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, QStringList());
    EXPECT_FALSE(outcome.err.isEmpty());
    EXPECT_EQ(run({}).status, 2);
}

TEST_F(ZrthumbTest, HelpAndVersionGoToStdout)
{
    EXPECT_EQ(run({"--version"}).out, QStringList({"zrthumb " ZRTHUMB_VERSION}));
    EXPECT_EQ(run({"--help"}).status, 0);
    EXPECT_FALSE(run({"--help"}).out.isEmpty());
}

TEST_F(ZrthumbTest, GarbageInPlaceOfTheCachedPngIsReported)
{
    const QString path = source("a.vrx");
    ASSERT_EQ(run({path}).status, 0);
    writeFile(png("a.vrxvrx.png"), "garbage");
    const ProgramRun outcome = run({path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err,
              QStringList({"zrthumb: " + path + ": no thumbnail: the cached picture cannot be read: delete " +
                           png("a.vrxvrx.png") + ", which is made anew"}));
}

TEST_F(ZrthumbTest, UnusableDataFolderFailsEachFile)
{
    writeFile(dataFolder(), "a file where the folder should be");
    const ProgramRun outcome = run({source("a.vrx")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, QStringList());
    EXPECT_EQ(outcome.err.first().section("no thumbnail: ", 1),
              dataFolder() + " is in the place of a folder: move it away");
    EXPECT_EQ(outcome.err.size(), 1);
    ASSERT_TRUE(QFile::remove(dataFolder()));
}

#ifdef Q_OS_LINUX
TEST_F(ZrthumbTest, SliceFilesNeedNoDisplay)
{
    m_environment.remove("QT_QPA_PLATFORM");
    m_environment.remove("WAYLAND_DISPLAY");
    for (const char* display : {"", ":97531"}) {
        m_environment.insert("DISPLAY", display);
        const ProgramRun outcome = run({source("a.vrx")});
        EXPECT_EQ(outcome.status, 0) << display;
        EXPECT_EQ(outcome.err, QStringList()) << display;
    }
}

TEST_F(ZrthumbTest, LogAndPathsFollowTheLocale)
{
    const QString path = source(QString::fromUtf8("t\xc3\xbcr.vrx"));
    EXPECT_EQ(run({path}).status, 0);
    EXPECT_TRUE(readFile(defaultLogPath()).contains("in 2 " + path.toUtf8()));
}
#endif

} // namespace
} // namespace zr::test
