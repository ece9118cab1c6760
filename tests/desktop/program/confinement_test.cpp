// SPDX-License-Identifier: MIT
// Each case runs in a child process, since what is given up is given up for good.

#include "desktop/confinement.h"

#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zr::desktop
{
namespace
{

constexpr int kWithoutConfinement = 99;
constexpr int kReached = 7; ///< the child's status after `act`

#if defined(__SANITIZE_ADDRESS__)
constexpr int kMebibytes = 0; // AddressSanitizer reserves more than any limit
#else
constexpr int kMebibytes = 2048;
#endif

// The status of a child that confines itself and then acts.
int statusAfter(const std::function<void()>& act, Limits limits = {20, kMebibytes})
{
    const pid_t child = fork();
    if (child == 0) {
        if (!confine(limits, "too slow").isEmpty())
            _exit(kWithoutConfinement);
        act();
        _exit(kReached);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

bool endedBy(int status, int signal)
{
    return WIFSIGNALED(status) && WTERMSIG(status) == signal;
}

bool wentOn(int status)
{
    return WIFEXITED(status) && WEXITSTATUS(status) == kReached;
}

struct Deed {
    const char* name;
    void (*act)();
};

std::ostream& operator<<(std::ostream& out, const Deed& deed)
{
    return out << deed.name;
}

class DeadlyTest : public ::testing::TestWithParam<Deed>
{
};

TEST_P(DeadlyTest, EndsTheProcess)
{
    EXPECT_TRUE(endedBy(statusAfter(GetParam().act), SIGSYS));
}

constexpr char kName[] = "/tmp/no such file";

INSTANTIATE_TEST_SUITE_P(
    Calls, DeadlyTest,
    ::testing::Values(
        Deed{"Opening", [] { static_cast<void>(open("/etc/passwd", O_RDONLY)); }},
        Deed{"OpeningTheOldWay", [] { syscall(SYS_open, "/etc/passwd", O_RDONLY); }},
        Deed{"OpeningTheNewWay", [] { syscall(SYS_openat2, AT_FDCWD, "/etc/passwd", nullptr, 0); }},
        Deed{"Creating", [] { static_cast<void>(creat(kName, 0600)); }},
        Deed{"MakingASocket", [] { static_cast<void>(socket(AF_INET, SOCK_STREAM, 0)); }},
        Deed{"MakingALocalSocket", [] { static_cast<void>(socket(AF_UNIX, SOCK_STREAM, 0)); }},
        Deed{"Connecting",
             [] {
                 const sockaddr_in address{AF_INET, htons(80), {htonl(INADDR_LOOPBACK)}, {}};
                 static_cast<void>(connect(0, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
             }},
        Deed{"Executing", [] { execl("/bin/true", "true", nullptr); }},
        Deed{"ExecutingADescriptor", [] { syscall(SYS_execveat, 0, "", nullptr, nullptr, AT_EMPTY_PATH); }},
        Deed{"Forking", [] { static_cast<void>(fork()); }}, Deed{"MakingAThread", [] { std::thread([] {}).join(); }}, //
        Deed{"Tracing", [] { syscall(SYS_ptrace, 0, 0, 0, 0); }}, Deed{"Signalling", [] { kill(getppid(), 0); }},     //
        Deed{"Removing", [] { unlink(kName); }}, Deed{"Renaming", [] { rename(kName, kName); }},                      //
        Deed{"Linking", [] { static_cast<void>(symlink(kName, kName)); }},
        Deed{"MakingAFolder", [] { mkdir(kName, 0700); }}),
    [](const auto& row) { return std::string(row.param.name); });

struct RefusedCall {
    const char* name;
    long (*call)();
};

// Neither needed nor dangerous enough to end for.
TEST(ConfinementTest, OtherCallsAreRefused)
{
    const RefusedCall calls[] = {
        {"chmod", [] { return long{chmod(kName, 0600)}; }},
        {"chdir", [] { return long{chdir("/")}; }},
        {"stat", [] { return syscall(SYS_stat, "/", nullptr); }},
        {"ioctl", [] { return syscall(SYS_ioctl, 0, 0, 0); }},
        {"setrlimit", [] { return syscall(SYS_prlimit64, 0, RLIMIT_CORE, nullptr, nullptr); }},
        {"personality", [] { return syscall(SYS_personality, 0); }},
        {"unshare", [] { return syscall(SYS_unshare, 0); }},
    };
    for (const RefusedCall& row : calls) {
        const auto act = [&row] {
            if (row.call() != -1 || errno != EPERM)
                _exit(1);
        };
        EXPECT_TRUE(wentOn(statusAfter(act))) << row.name;
    }
}

TEST(ConfinementTest, ReadingWritingAndComputingGoOn)
{
    int pipe[2] = {};
    ASSERT_EQ(::pipe(pipe), 0);
    const auto act = [&pipe] {
        char byte = 'a';
        if (write(pipe[1], &byte, 1) != 1 || read(pipe[0], &byte, 1) != 1)
            _exit(1);
        volatile char* const memory = static_cast<char*>(std::malloc(std::size_t{64} << 20U));
        if (!memory)
            _exit(2);
        memory[1000] = byte;
    };
    EXPECT_TRUE(wentOn(statusAfter(act)));
    close(pipe[0]);
    close(pipe[1]);
}

// A crash stays a crash: no other status, and no core.
TEST(ConfinementTest, AbortEndsByItsSignal)
{
    const int status = statusAfter([] {
        std::signal(SIGABRT, SIG_DFL);
        std::abort();
    });
    EXPECT_TRUE(endedBy(status, SIGABRT));
    EXPECT_FALSE(WCOREDUMP(status));
}

// Programs that run as another user when they are executed would not, even if they could be.
TEST(ConfinementTest, NoPrivilegesCanBeGained)
{
    int pipe[2] = {};
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t child = fork();
    if (child == 0) {
        confine({20, kMebibytes}, "too slow");
        char byte = 0;
        _exit(read(pipe[0], &byte, 1) == 1 ? kReached : 1);
    }
    QString status;
    while (!status.contains("Seccomp:\t2")) {
        status = test::readFile(QStringLiteral("/proc/%1/status").arg(child));
        std::this_thread::yield();
    }
    EXPECT_TRUE(status.contains("NoNewPrivs:\t1"));
    ASSERT_EQ(write(pipe[1], "x", 1), 1);
    int end = -1;
    EXPECT_EQ(waitpid(child, &end, 0), child);
    EXPECT_TRUE(wentOn(end));
    close(pipe[0]);
    close(pipe[1]);
}

TEST(ConfinementTest, TimeIsLimitedAndItsEndSaid)
{
    int pipe[2] = {};
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(pipe[1], STDERR_FILENO);
        confine({1, kMebibytes}, "too slow");
        for (volatile unsigned i = 0;; i = i + 1) {
        }
    }
    close(pipe[1]);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    std::string text(100, '\0');
    const ssize_t size = read(pipe[0], text.data(), text.size());
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    EXPECT_EQ(text, "zrthumbnailer: too slow\n");
    close(pipe[0]);
}

// What this process has reserved; under AddressSanitizer that is more than any machine has.
int reservedMebibytes()
{
    const QByteArray pages = test::readFile("/proc/self/statm").split(' ').value(0);
    return static_cast<int>(pages.toLongLong() * sysconf(_SC_PAGESIZE) >> 20);
}

TEST(ConfinementTest, AddressSpaceIsLimited)
{
    const int reserved = reservedMebibytes();
    ASSERT_GT(reserved, 0);
    const auto act = [] {
        if (mmap(nullptr, std::size_t{1} << 30U, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED)
            _exit(1);
    };
    EXPECT_TRUE(wentOn(statusAfter(act, {20, reserved + 512})));
    EXPECT_EQ(WEXITSTATUS(statusAfter(act, {20, 0})), 1);
}

// As below a service or a container that has given up the right to filter calls.
TEST(ConfinementTest, WhatTheSystemRefusesIsSaidAndTheProcessGoesOn)
{
    const pid_t child = fork();
    if (child == 0) {
        // Within the first filter a second one cannot be installed, and no limit be set.
        const bool isConfined = confine({20, kMebibytes}, "too slow").isEmpty();
        const QByteArrayList refused = confine({20, kMebibytes}, "too slow");
        const bool isSaid = refused.contains("system calls are not filtered") &&
                            refused.contains("processor time is not limited") &&
                            refused.contains("privileges can be gained");
        _exit(isConfined && isSaid ? kReached : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(wentOn(status));
}

} // namespace
} // namespace zr::desktop
