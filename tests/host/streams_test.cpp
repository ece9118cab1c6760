// SPDX-License-Identifier: MIT
// zrthumb with unusual streams and environment variables.

#include "host/platform.h"
#include "tests/host/zrthumb_fixture.h"
#include "tests/support/qt_printers.h"

#include <QImage>

#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

namespace
{

// The user that getpwuid() returns.
bool isUserReplaced = false;
const char* homeOfUser = nullptr; // null: no such user

} // namespace

// Replaces the C library's function.
extern "C" passwd* getpwuid(uid_t uid)
{
    if (!isUserReplaced)
        return reinterpret_cast<decltype(&getpwuid)>(dlsym(RTLD_NEXT, "getpwuid"))(uid);
    static passwd user = {};
    user.pw_dir = const_cast<char*>(homeOfUser);
    return homeOfUser ? &user : nullptr;
}

namespace zr::test
{
namespace
{

class StreamsTest : public ZrthumbTest
{
protected:
    // Runs the program in a shell with these redirections.
    ProgramRun runInShell(const QString& arguments, const QString& redirections) const
    {
        return runProgram("/bin/sh", {"-c", QStringLiteral("'" ZRTHUMB_PROGRAM "' %1 %2").arg(arguments, redirections)},
                          m_folder.path(), m_environment);
    }
};

TEST_F(StreamsTest, ClosedStreamsAreOpenedOnTheNullDevice)
{
    for (const char* const name : {"a.vrx", "b.vrx", "c.vrx"})
        source(name);
    for (const char* const closed : {">&-", "<&-", "2>&-", ">&- 2>&-", "<&- >&- 2>&-"}) {
        SCOPED_TRACE(closed);
        EXPECT_EQ(runInShell("a.vrx b.vrx c.vrx", closed).status, 0);
        EXPECT_EQ(runInShell("a.vrx missing", closed).status, 1);
        EXPECT_EQ(runInShell("-o out.png a.vrx", closed).status, 0);
        EXPECT_FALSE(QImage(m_folder.filePath("out.png")).isNull());
        ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    }
}

TEST_F(StreamsTest, FullStdoutIsAFailure)
{
    source("a.vrx");
    const QStringList fault = {"zrthumb: stdout cannot be written: No space left on device"};
    for (const char* const arguments : {"a.vrx a.vrx", "--help", "--version", "--check"}) {
        SCOPED_TRACE(arguments);
        const ProgramRun outcome = runInShell(arguments, ">/dev/full");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, fault);
    }
    const ProgramRun picture = runInShell("-o - a.vrx", ">/dev/full");
    EXPECT_EQ(picture.status, 1);
    EXPECT_EQ(picture.err, QStringList("zrthumb: -: cannot be written: No space left on device"));
    EXPECT_EQ(runInShell("--nonsense", ">/dev/full").status, 2);
}

TEST_F(StreamsTest, PicturesAreNotWrittenToATerminal)
{
    source("a.vrx");
    const ProgramRun outcome = runProgram(
        "script", {"-qec", QStringLiteral(ZRTHUMB_PROGRAM " -o - a.vrx"), "/dev/null"}, m_folder.path(), m_environment);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out.first(),
              "zrthumb: --output -: a picture is nothing for a terminal; lead it to a file or another program");
}

TEST_F(StreamsTest, HomeComesFromTheSystemIfTheEnvironmentHasNone)
{
    const QByteArray home = qgetenv("HOME");
    const QByteArray data = qgetenv("XDG_DATA_HOME");
    qunsetenv("XDG_DATA_HOME");
    for (const bool isEmpty : {false, true}) {
        qunsetenv("HOME");
        if (isEmpty)
            qputenv("HOME", "");
        EXPECT_EQ(homeFault(), "");
        EXPECT_EQ(qgetenv("HOME"), getpwuid(getuid())->pw_dir);
    }
    qputenv("HOME", "/somewhere/else");
    EXPECT_EQ(homeFault(), "");
    EXPECT_EQ(qgetenv("HOME"), "/somewhere/else");
    qputenv("HOME", home);
    qputenv("XDG_DATA_HOME", data);
}

// A user ID without an account, as in containers and services, or a user whose home is not a usable folder.
TEST_F(StreamsTest, UsersWithoutAHomeLearnWhatToSet)
{
    const QByteArray home = qgetenv("HOME");
    const QByteArray data = qgetenv("XDG_DATA_HOME");
    qunsetenv("HOME");
    qunsetenv("XDG_DATA_HOME");
    isUserReplaced = true;
    for (const char* const folder : {static_cast<const char*>(nullptr), "", "/"}) {
        homeOfUser = folder;
        EXPECT_EQ(homeFault(), "you have no home folder for the cache: set HOME or XDG_DATA_HOME");
        EXPECT_FALSE(qEnvironmentVariableIsSet("HOME"));
    }
    homeOfUser = "/home/somebody";
    EXPECT_EQ(homeFault(), "");
    EXPECT_EQ(qgetenv("HOME"), "/home/somebody");
    isUserReplaced = false;
    qputenv("HOME", home);
    qputenv("XDG_DATA_HOME", data);
}

} // namespace
} // namespace zr::test
