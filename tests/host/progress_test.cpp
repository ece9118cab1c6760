// SPDX-License-Identifier: MIT
// The progress line of a run, on pseudo terminals.

#include "host/progress.h"

#include "host/text_width.h"
#include "tests/host/terminal_run.h"
#include "tests/host/terminal_screen.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/vrx_bytes.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>

#include <cwchar>

#include <sys/ioctl.h>
#include <unistd.h>

namespace zr::test
{
namespace
{

constexpr int kLongerThanAnIntervalMs = 300;
constexpr int kColumns = 80;
constexpr char kTerm[] = "xterm-256color";

// The progress lines with this total.
QStringList framesOf(const TerminalScreen& screen, int total)
{
    return screen.frames().filter(QStringLiteral("/%1]").arg(total));
}

class ProgressOfRunTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        samples::VrxParts parts;
        parts.preview.width = 2;
        parts.preview.height = 2;
        parts.preview.data = samples::wordBytes({0, 1, 1, 1});
        for (const char* name : {"a.vrx", "b.vrx", "c.vrx", "d.vrx"})
            writeFile(m_folder.filePath(name), samples::vrxBytes(parts));
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert("TERM", kTerm);
    }

    TerminalRun run(const QStringList& arguments, int columns = kColumns, const QString& outFile = {}) const
    {
        return runOnTerminal(QStringLiteral(ZRTHUMB_PROGRAM), arguments, m_folder.path(), m_environment, columns,
                             outFile);
    }

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
};

TEST_F(ProgressOfRunTest, ReachesTheEndAndLeavesOnlyTheLines)
{
    const TerminalRun outcome = run({"a.vrx", "b.vrx", "c.vrx", "d.vrx"}, 300);
    EXPECT_EQ(outcome.status, 0);
    const TerminalScreen screen(outcome.bytes, 300);
    const QStringList expected = {"[1/4] a.vrx", "[2/4] b.vrx", "[3/4] c.vrx", "[4/4] d.vrx", "[4/4]"};
    const QStringList frames = framesOf(screen, 4);
    for (const QString& frame : frames)
        EXPECT_TRUE(expected.contains(frame)) << frame.toStdString();
    EXPECT_EQ(frames.first(), "[1/4] a.vrx");
    EXPECT_EQ(frames.last(), "[4/4]");
    EXPECT_EQ(screen.frames().last(), "");
    EXPECT_EQ(screen.lines(), runProgram(QStringLiteral(ZRTHUMB_PROGRAM), {"a.vrx", "b.vrx", "c.vrx", "d.vrx"},
                                         m_folder.path(), m_environment)
                                  .out);
}

TEST_F(ProgressOfRunTest, ClosesWithTheNumberOfFailures)
{
    const TerminalRun outcome = run({"-r", ".", "missing", "gone"}, 300, m_folder.filePath("out"));
    EXPECT_EQ(outcome.status, 1);
    const TerminalScreen screen(outcome.bytes, 300);
    EXPECT_EQ(screen.frames().filter("[6/6]").last(), "[6/6] (2 failed)");
    EXPECT_EQ(screen.lines(), QStringList({"zrthumb: missing: no thumbnail: no such file",
                                           "zrthumb: gone: no thumbnail: no such file", "zrthumb: 2 of 6 failed"}));
    EXPECT_EQ(readFile(m_folder.filePath("out")).count('\n'), 4);
}

TEST_F(ProgressOfRunTest, FailuresAreCountedOnTerminalsWhenThereAreSeveralFiles)
{
    struct Case {
        QStringList arguments;
        bool isCounted;
    };
    const Case cases[] = {
        {{"a.vrx", "missing"}, true},       {{"missing", "gone"}, true}, {{"missing"}, false},
        {{"-q", "missing", "gone"}, false}, {{"a.vrx", "b.vrx"}, false},
    };
    for (const Case& each : cases)
        EXPECT_EQ(run(each.arguments).bytes.contains(" failed\r\n"), each.isCounted)
            << each.arguments.join(' ').toStdString();
    const ProgramRun piped =
        runProgram(QStringLiteral(ZRTHUMB_PROGRAM), {"missing", "gone"}, m_folder.path(), m_environment);
    EXPECT_EQ(piped.err.size(), 2) << "one line for each failure, no count in a pipe";
}

TEST_F(ProgressOfRunTest, FewFilesOrAQuietRunShowNoProgress)
{
    for (const QStringList& arguments :
         {QStringList{"a.vrx", "b.vrx", "missing"}, {"-q", "a.vrx", "b.vrx", "c.vrx", "missing"}, {"a.vrx"}}) {
        const QByteArray bytes = run(arguments).bytes;
        EXPECT_FALSE(bytes.contains('\x1b')) << bytes.toStdString();
        EXPECT_FALSE(bytes.contains("[1/")) << bytes.toStdString();
    }
}

TEST_F(ProgressOfRunTest, DumbTerminalsShowNoProgress)
{
    const QStringList arguments = {"a.vrx", "missing", "b.vrx", "c.vrx", "d.vrx"};
    for (const QByteArray& term : {QByteArray("dumb"), QByteArray()}) {
        m_environment.insert("TERM", term);
        const QByteArray bytes = run(arguments, kColumns, m_folder.filePath("out")).bytes;
        EXPECT_EQ(bytes.toStdString(), "zrthumb: missing: no thumbnail: no such file\r\nzrthumb: 1 of 5 failed\r\n");
    }
    m_environment.remove("TERM");
    EXPECT_FALSE(run(arguments).bytes.contains('\x1b'));
    m_environment.insert("TERM", kTerm);
    EXPECT_TRUE(run(arguments).bytes.contains('\x1b'));
}

TEST_F(ProgressOfRunTest, RedirectedOutputDoesNotEraseTheLine)
{
    const TerminalRun outcome = run({"a.vrx", "b.vrx", "c.vrx", "d.vrx"}, kColumns, m_folder.filePath("out"));
    const TerminalScreen screen(outcome.bytes, kColumns);
    EXPECT_EQ(screen.frames().count(""), 1) << outcome.bytes.toStdString();
    EXPECT_EQ(screen.lines(), QStringList());
}

TEST_F(ProgressOfRunTest, ListingOfATreeIsShown)
{
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("tree"));
    for (int i = 0; i < 2000; ++i)
        writeFile(m_folder.filePath(QStringLiteral("tree/%1.vrx").arg(i)), "");
    const TerminalScreen screen(run({"-r", "tree"}).bytes, kColumns);
    EXPECT_GE(screen.frames().filter("listing").size(), 1);
    EXPECT_EQ(screen.lines().filter("listing"), QStringList());
    EXPECT_EQ(screen.lines().last(), "zrthumb: 2000 of 2000 failed");
}

TEST(ProgressTest, ListingGrowsAndDisappears)
{
    const QByteArray bytes = onTerminal(kColumns, kTerm, [](const WaitFor& waitFor) {
        Progress progress(false);
        for (int found = 1; found <= 1234; ++found)
            progress.showListing(found);
        waitFor("1234 files\x1b[K");
        progress.begin(1234);
    });
    const TerminalScreen screen(bytes, kColumns);
    ASSERT_GE(screen.frames().size(), 2);
    EXPECT_EQ(screen.frames()[screen.frames().size() - 2], "listing: 1234 files");
    EXPECT_EQ(screen.frames().last(), "");
    EXPECT_EQ(screen.lines(), QStringList());
    for (const QString& frame : screen.frames().mid(0, screen.frames().size() - 1))
        EXPECT_GT(frame.mid(9).section(' ', 0, 0).toInt(), 3) << frame.toStdString();
}

TEST(ProgressTest, FewListedFilesShowNoLine)
{
    const QByteArray bytes = onTerminal(kColumns, kTerm, [](const WaitFor&) {
        Progress progress(false);
        progress.showListing(3);
        QThread::msleep(kLongerThanAnIntervalMs);
        progress.begin(3);
        progress.showFile(1, "a", 0);
        QThread::msleep(kLongerThanAnIntervalMs);
        progress.end(3, 0);
    });
    EXPECT_EQ(bytes.toStdString(), "");
}

TEST(ProgressTest, MillionFilesAreNotSlowedDown)
{
    constexpr int kCount = 1000000;
    qint64 elapsed = 0;
    const QByteArray bytes = onTerminal(kColumns, kTerm, [&elapsed](const WaitFor&) {
        QElapsedTimer timer;
        timer.start();
        Progress progress(false);
        progress.begin(kCount);
        for (int i = 1; i <= kCount; ++i)
            progress.showFile(i, "cached.stl", 0);
        elapsed = timer.elapsed();
        progress.end(kCount, 0);
    });
    EXPECT_LT(elapsed, 20000);
    const TerminalScreen screen(bytes, kColumns);
    EXPECT_LE(screen.frames().size(), elapsed / 100 + 5);
    EXPECT_EQ(framesOf(screen, kCount).last(), "[1000000/1000000]");
}

TEST(ProgressTest, SlowFileIsShownEvenSoonAfterAnother)
{
    const QByteArray bytes = onTerminal(kColumns, kTerm, [](const WaitFor& waitFor) {
        Progress progress(false);
        progress.begin(4);
        progress.showFile(1, "first.stl", 0);
        progress.showFile(2, "second.stl", 0);
        progress.showFile(3, "slow.stl", 1);
        waitFor("slow.stl (1 failed)\x1b[K");
        progress.print(stderr, "a line\n");
        waitFor("slow.stl (1 failed)\x1b[K");
    });
    const TerminalScreen screen(bytes, kColumns);
    EXPECT_EQ(framesOf(screen, 4).count("[3/4] slow.stl (1 failed)"), 2) << "before and after the line";
    EXPECT_EQ(screen.lines(), QStringList({"a line"}));
}

TEST(ProgressTest, NamesNeverWrapTheLine)
{
    const QString names[] = {
        QString(300, 'n') + ".stl",
        QString::fromUtf8("\xe4\xb8\xad\xe6\x96\x87").repeated(100),
        QString::fromUtf8("x\xe4\xb8\xad").repeated(100),
        QString::fromUtf8("e\xcc\x81").repeated(200),
        QString::fromUtf8("\xf0\x9f\x8e\xb2").repeated(120),
        QString::fromUtf8("\xed\x95\x9c\xef\xbd\xb6\xef\xbc\xa1").repeated(60),
        QString::fromUtf8("\xe4\xb8\xad"),
        "a",
    };
    for (const QString& name : names) {
        for (const int columns : {1, 2, 3, 8, 10, 15, 20, 21, 22, 23, 40, 41, 80, 200}) {
            SCOPED_TRACE(name.left(2).toStdString() + " in " + std::to_string(columns));
            const QByteArray bytes = onTerminal(columns, kTerm, [&name](const WaitFor& waitFor) {
                Progress progress(false);
                progress.begin(10);
                progress.showFile(7, name, 2);
                waitFor("\x1b[K");
            });
            const TerminalScreen screen(bytes, columns);
            EXPECT_LT(screen.widestFrame(), columns);
            EXPECT_EQ(screen.lines(), QStringList());
            ASSERT_FALSE(screen.frames().isEmpty());
            if (columns >= 40) {
                EXPECT_TRUE(screen.frames().first().startsWith("[7/10] " + name.left(1)));
                EXPECT_TRUE(screen.frames().first().endsWith(name.right(1) + " (2 failed)"));
                const bool isWhole = screen.frames().first().contains(name);
                EXPECT_TRUE(isWhole || screen.widestFrame() > columns - 6) << "the line is too short";
            }
        }
    }
}

TEST(ProgressTest, WidthFollowsTheTerminal)
{
    const QString name(100, 'n');
    const QByteArray bytes = onTerminal(120, kTerm, [&name](const WaitFor& waitFor) {
        Progress progress(false);
        progress.begin(4);
        progress.showFile(1, name, 0);
        waitFor("\x1b[K");
        winsize size{};
        size.ws_col = 60;
        ioctl(STDERR_FILENO, TIOCSWINSZ, &size);
        progress.showFile(2, name, 0);
        waitFor("\x1b[K");
    });
    const QStringList frames = TerminalScreen(bytes, 200).frames();
    ASSERT_GE(frames.size(), 2);
    EXPECT_EQ(frames[0], "[1/4] " + name);
    EXPECT_EQ(frames[1].size(), 59);
}

TEST(ProgressTest, UnknownTerminalWidthIsTheShells)
{
    for (const auto& [columns, expected] : {std::make_pair("50", 49), {"", 79}, {"many", 79}, {"-3", 79}}) {
        qputenv("COLUMNS", columns);
        const QByteArray bytes = onTerminal(0, kTerm, [](const WaitFor& waitFor) {
            Progress progress(false);
            progress.begin(4);
            progress.showFile(1, QString(300, 'n'), 0);
            waitFor("\x1b[K");
        });
        EXPECT_EQ(TerminalScreen(bytes, 200).widestFrame(), expected) << columns;
    }
    qunsetenv("COLUMNS");
}

TEST(ProgressTest, ControlCharactersOfNamesDoNotReachTheTerminal)
{
    const QByteArray bytes = onTerminal(kColumns, kTerm, [](const WaitFor& waitFor) {
        Progress progress(false);
        progress.begin(4);
        progress.showFile(1, QString("a\x1b[31m\nb\tc\r") + QChar(0x202E) + QChar(0x9B) + "d", 0);
        waitFor("\x1b[K");
    });
    EXPECT_EQ(TerminalScreen(bytes, kColumns).frames().first(), "[1/4] a?[31m?b?c???d");
}

TEST(TextWidthTest, IsNeverLessThanTheCLibrarys)
{
    ASSERT_EQ(wcwidth(L'\x4e2d'), 2) << "the locale knows no wide characters";
    int wide = 0;
    for (uint character = 0x20; character <= 0x10FFFF; ++character) {
        const int width = wcwidth(static_cast<wchar_t>(character));
        if (width < 0 || QChar::isSurrogate(character))
            continue;
        wide += width == 2;
        EXPECT_GE(cellsOf(QString::fromUcs4(&character, 1)), width) << std::hex << character;
    }
    EXPECT_GT(wide, 100000);
}

TEST(TextWidthTest, CountsCells)
{
    const std::pair<const char*, int> cases[] = {
        {"", 0},
        {"part.stl", 8},
        {"t\xc3\xbcr", 3},
        {"u\xcc\x88", 1},
        {"\xe4\xb8\xad\xe6\x96\x87", 4},
        {"\xf0\x9f\x8e\xb2", 2},
        {"\xd0\xb6\xd7\xa9\xce\xa9", 3},
    };
    for (const auto& [text, cells] : cases)
        EXPECT_EQ(cellsOf(QString::fromUtf8(text)), cells) << text;
}

TEST(TextWidthTest, FittedTextKeepsItsEnds)
{
    EXPECT_EQ(fittedToCells("a-long-name.stl", 15), "a-long-name.stl");
    EXPECT_EQ(fittedToCells("a-long-name.stl", 14), "a-long...e.stl");
    EXPECT_EQ(fittedToCells("a-long-name.stl", 4), "a...");
    EXPECT_EQ(fittedToCells("a-long-name.stl", 2), "..");
    EXPECT_EQ(fittedToCells("a-long-name.stl", -2), "");
    const QString wide = QString::fromUtf8("\xe4\xb8\xad\xe6\x96\x87\xe4\xb8\xad\xe6\x96\x87");
    EXPECT_EQ(fittedToCells(wide, 7), wide.left(1) + "..." + wide.right(1));
    EXPECT_EQ(fittedToCells(wide, 6), wide.left(1) + "...");
}

} // namespace
} // namespace zr::test
