// SPDX-License-Identifier: MIT
// zrthumb --check: what it finds on a machine where all is well, and that it leaves nothing behind.

#include "tests/host/check/check_test.h"

#include "core/data_location.h"
#include "tests/support/faster_clock.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 60000;

const QStringList kSamplesAreWell = {
    "ok   sample slice file: its thumbnail was made, and taken away again",
    "ok   sample model: its thumbnail was made, and taken away again",
    "no problems found",
};

TEST_F(CheckTest, FreshProfileIsWellAndStaysFresh)
{
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, QStringList());
    ASSERT_EQ(run.out.size(), 9);
    EXPECT_EQ(run.out[0], kNotRegistered);
    EXPECT_EQ(run.out[1], QString("ok   Qt: %1 starts, platform xcb").arg(qVersion()));
    EXPECT_TRUE(run.out[2].startsWith("ok   OpenGL: 4.5 ")) << run.out[2].toStdString();
    EXPECT_EQ(run.out[3], "ok   data folder: " + dataFolder() + " is not there yet; the first thumbnail makes it");
    EXPECT_EQ(run.out[4], "ok   database: none yet; the first thumbnail makes it");
    EXPECT_EQ(run.out[5], "ok   log: none yet");
    EXPECT_EQ(run.out.mid(6), kSamplesAreWell);
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));
}

TEST_F(CheckTest, FoldersAboveAFreshProfileAreTakenBackToo)
{
    m_environment.insert("XDG_DATA_HOME", m_folder.filePath("new/share"));
    EXPECT_EQ(check().status, 0);
    EXPECT_FALSE(QFileInfo::exists(m_folder.filePath("new")));
}

TEST_F(CheckTest, UsedProfileIsWellAndUntouched)
{
    makeThumbnail();
    const QStringList before = snapshot();
    const QByteArray log = readFile(defaultLogPath());
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    ASSERT_GE(run.out.size(), 9);
    EXPECT_EQ(run.out[3], "ok   data folder: " + dataFolder() + " is writable");
    EXPECT_EQ(run.out[4], "ok   database: pictures in it: 1");
    EXPECT_EQ(run.out[5], "ok   log: the last lines of " + defaultLogPath());
    EXPECT_EQ(run.out.mid(run.out.size() - 3), kSamplesAreWell);
    EXPECT_EQ(snapshot(), before);
    EXPECT_TRUE(readFile(defaultLogPath()).startsWith(log));
}

// What there is of a data folder may be less than the whole.
TEST_F(CheckTest, PartsThatWereMissingAreTakenBack)
{
    for (const char* part : {"thumbnail.db", "thumbnail.log", "thumbnailImage"}) {
        SCOPED_TRACE(part);
        createDataFolder();
        makeThumbnail();
        ASSERT_TRUE(QFile::remove(path(part)) || QDir(path(part)).removeRecursively());
        const QStringList before = snapshot();
        EXPECT_EQ(check().status, 0);
        EXPECT_EQ(snapshot(), before);
        ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    }
}

TEST_F(CheckTest, EmptyDataFolderStaysEmpty)
{
    createDataFolder();
    EXPECT_EQ(check().status, 0);
    EXPECT_EQ(snapshot(), QStringList());
    EXPECT_TRUE(QFileInfo(dataFolder()).isDir());
}

// Requests that come meanwhile keep their pictures, also in a data folder that the check was the first to make.
TEST_F(CheckTest, RequestsMeanwhileAreNotDisturbed)
{
    for (int i = 0; i < 5; ++i) {
        QStringList files;
        for (const samples::SampleFile& sample : samples::sampleFiles())
            files += writeFile(m_folder.filePath(sample.name), sample.make());
        QProcess other;
        other.setProcessEnvironment(m_environment);
        startProgram(other, QStringLiteral(ZRTHUMB_PROGRAM), files);
        EXPECT_EQ(check().status, 0);
        ASSERT_TRUE(other.waitForFinished(kTimeoutMs));
        EXPECT_EQ(other.exitCode(), 0) << other.readAllStandardError().toStdString();
        EXPECT_EQ(snapshot().filter("zrthumb-check"), QStringList());
        EXPECT_EQ(snapshot().filter("|").size(), 2 * files.size());
        ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    }
}

TEST_F(CheckTest, LogShowsItsLastTenLinesWithoutControlCharacters)
{
    createDataFolder();
    QByteArray log;
    for (int i = 1; i <= 2000; ++i)
        log += "line " + QByteArray::number(i) + " \x1b[31m\n";
    writeFile(defaultLogPath(), log);
    const QStringList out = check().out;
    const auto begin = out.indexOf("ok   log: the last lines of " + defaultLogPath());
    ASSERT_GE(begin, 0);
    ASSERT_GT(out.size(), begin + 11);
    EXPECT_EQ(out[begin + 1], "       line 1991 ?[31m");
    EXPECT_EQ(out[begin + 10], "       line 2000 ?[31m");
    EXPECT_TRUE(out[begin + 11].startsWith("ok   sample ")) << out[begin + 11].toStdString();
}

TEST_F(CheckTest, SampleThatCannotBeWrittenIsTold)
{
    m_environment.insert("TMPDIR", "/proc/sys");
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(marked(run, "FAIL"),
              QStringList("FAIL sample: cannot be written to /proc/sys: make room on that disk, and "
                          "get the right to write there"));
}

// Only the data folder's own path counts.
TEST_F(CheckTest, ApostropheInThePathOfTemporaryFilesIsNoProblem)
{
    const QString folder = m_folder.filePath("o'brien");
    ASSERT_TRUE(QDir().mkpath(folder));
    m_environment.insert("TMPDIR", folder);
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0) << run.out.join('\n').toStdString();
    EXPECT_EQ(QDir(folder).entryList({"zrthumb*"}), QStringList());
}

TEST_F(CheckTest, MissingDisplayIsNoProblem)
{
    m_environment.insert("DISPLAY", "");
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0) << run.out.join('\n').toStdString();
    EXPECT_TRUE(run.out.contains("note OpenGL: there is no display for it; models are drawn without it"));
    EXPECT_TRUE(run.out.contains("ok   sample model: its thumbnail was made, and taken away again"));
}

TEST_F(CheckTest, MissingOpenGlIsTold)
{
    m_environment.insert("LIBGL_DRIVERS_PATH", m_folder.path());
    expectOnlyFailure("FAIL OpenGL: there is no OpenGL, so models have no thumbnails; a driver of the graphics card's "
                      "maker brings it");
}

TEST_F(CheckTest, OldOpenGlIsTold)
{
    m_environment.insert("MESA_GL_VERSION_OVERRIDE", "1.4");
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    ASSERT_GE(run.out.size(), 3);
    EXPECT_TRUE(run.out[2].startsWith("FAIL OpenGL: too old for models, which need 2.0: 1.4 "))
        << run.out[2].toStdString();
    EXPECT_TRUE(run.out[2].endsWith("; a newer driver of the graphics card's maker may bring it"))
        << run.out[2].toStdString();
    EXPECT_EQ(run.out.last(), "1 problem found");
}

// A port that takes connections and never answers, as a display.
class SilentDisplay
{
public:
    SilentDisplay() : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        for (m_number = kFirst; m_number < kLast; ++m_number) {
            sockaddr_in address = {};
            address.sin_family = AF_INET;
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            address.sin_port = htons(static_cast<uint16_t>(kPortOfDisplay0 + m_number));
            if (bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                listen(m_socket, 1) == 0)
                return;
        }
        ADD_FAILURE() << "no port is free";
    }
    ~SilentDisplay() { close(m_socket); }
    SilentDisplay(const SilentDisplay&) = delete;
    SilentDisplay& operator=(const SilentDisplay&) = delete;

    QString name() const { return QString("127.0.0.1:%1").arg(m_number); }

private:
    static constexpr int kPortOfDisplay0 = 6000;
    static constexpr int kFirst = 700;
    static constexpr int kLast = 900;

    int m_socket;
    int m_number = 0;
};

TEST_F(CheckTest, CheckThatDoesNotEndIsTold)
{
    constexpr int kLongestCheckMs = 40000;
    const SilentDisplay display;
    m_environment.insert("DISPLAY", display.name());
    useFasterClock();
    QElapsedTimer timer;
    timer.start();
    const ProgramRun run = check();
    EXPECT_GE(timer.elapsed(), kLongestCheckMs / kClockSpeed);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, QStringList({kNotRegistered,
                                    "FAIL Qt: no end after 40 seconds: the display does not answer; start it anew, or "
                                    "unset DISPLAY and WAYLAND_DISPLAY",
                                    "1 problem found"}));
}

} // namespace
} // namespace zr::test
