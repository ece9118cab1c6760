// SPDX-License-Identifier: MIT
#include "desktop/confinement.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace zr::desktop
{
namespace
{

using Filter = std::unique_ptr<void, void (*)(scmp_filter_ctx)>;

// What computing, memory and open files need. Whatever else exists is refused.
constexpr int kAllowed[] = {
    SCMP_SYS(read),
    SCMP_SYS(readv),
    SCMP_SYS(pread64),
    SCMP_SYS(write),
    SCMP_SYS(writev),
    SCMP_SYS(lseek),
    SCMP_SYS(fstat),
    SCMP_SYS(ftruncate),
    SCMP_SYS(close),
    SCMP_SYS(mmap),
    SCMP_SYS(munmap),
    SCMP_SYS(mremap),
    SCMP_SYS(mprotect),
    SCMP_SYS(madvise),
    SCMP_SYS(brk),
    SCMP_SYS(futex),
    SCMP_SYS(rt_sigaction),
    SCMP_SYS(rt_sigreturn),
    SCMP_SYS(rt_sigprocmask),
    SCMP_SYS(sigaltstack),
    SCMP_SYS(exit),
    SCMP_SYS(exit_group),
    SCMP_SYS(getpid),
    SCMP_SYS(gettid),
    SCMP_SYS(clock_gettime),
    SCMP_SYS(gettimeofday),
    SCMP_SYS(getrandom),
    SCMP_SYS(sysinfo),
    SCMP_SYS(sched_yield),
    SCMP_SYS(poll),
    SCMP_SYS(ppoll),
    SCMP_SYS(sched_getaffinity),
    SCMP_SYS(restart_syscall),
    SCMP_SYS(clock_nanosleep),
#if defined(__SANITIZE_ADDRESS__)
    // The sanitizers learn by a pipe whether memory can be read.
    SCMP_SYS(pipe2),
#endif
};

// What no thumbnail needs and whoever has taken the program over would try first.
constexpr int kDeadly[] = {
    SCMP_SYS(open),
    SCMP_SYS(openat),
    SCMP_SYS(openat2),
    SCMP_SYS(creat),
    SCMP_SYS(open_by_handle_at),
    SCMP_SYS(socket),
    SCMP_SYS(connect),
    SCMP_SYS(bind),
    SCMP_SYS(socketpair),
    SCMP_SYS(execve),
    SCMP_SYS(execveat),
    SCMP_SYS(fork),
    SCMP_SYS(vfork),
    SCMP_SYS(clone),
    SCMP_SYS(clone3),
    SCMP_SYS(ptrace),
    SCMP_SYS(kill),
    SCMP_SYS(unlink),
    SCMP_SYS(unlinkat),
    SCMP_SYS(rename),
    SCMP_SYS(renameat),
    SCMP_SYS(renameat2),
    SCMP_SYS(link),
    SCMP_SYS(linkat),
    SCMP_SYS(symlink),
    SCMP_SYS(symlinkat),
    SCMP_SYS(mkdir),
    SCMP_SYS(mkdirat),
    SCMP_SYS(rmdir),
    SCMP_SYS(truncate),
    SCMP_SYS(process_vm_readv),
    SCMP_SYS(process_vm_writev),
    SCMP_SYS(io_uring_setup),
};

// libseccomp's macros for this use compound literals, which clang refuses in C++.
scmp_arg_cmp argument(unsigned int number, scmp_compare comparison, scmp_datum_t first, scmp_datum_t second = 0)
{
    return {number, comparison, first, second};
}

bool addRules(scmp_filter_ctx filter)
{
    bool isDone = true;
    const auto add = [&](std::uint32_t action, int call, auto... condition) {
        isDone = isDone && seccomp_rule_add(filter, action, call, sizeof...(condition), condition...) == 0;
    };
    for (const int call : kAllowed)
        add(SCMP_ACT_ALLOW, call);
    for (const int call : kDeadly)
        add(SCMP_ACT_KILL_PROCESS, call);
    // The C library's fstat() and Qt's.
    add(SCMP_ACT_ALLOW, SCMP_SYS(newfstatat), argument(3, SCMP_CMP_MASKED_EQ, AT_EMPTY_PATH, AT_EMPTY_PATH));
    add(SCMP_ACT_ALLOW, SCMP_SYS(statx), argument(2, SCMP_CMP_MASKED_EQ, AT_EMPTY_PATH, AT_EMPTY_PATH));
    // abort() and raise().
    add(SCMP_ACT_ALLOW, SCMP_SYS(tgkill), argument(0, SCMP_CMP_EQ, static_cast<scmp_datum_t>(getpid())));
    add(SCMP_ACT_ALLOW, SCMP_SYS(fcntl), argument(1, SCMP_CMP_EQ, F_GETFL));
    return isDone;
}

// Of all threads.
bool filterCalls()
{
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)), seccomp_release);
    return filter && seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_TSYNC, 1) == 0 && addRules(filter.get()) &&
           seccomp_load(filter.get()) == 0;
}

bool limit(int resource, rlim_t most, rlim_t mostForHandler)
{
    struct rlimit now = {};
    if (getrlimit(resource, &now) != 0)
        return false;
    const struct rlimit wanted = {std::min(most, now.rlim_max), std::min(mostForHandler, now.rlim_max)};
    return setrlimit(resource, &wanted) == 0;
}

QByteArray lastWords;

void onTimeout(int)
{
    const ssize_t written = write(STDERR_FILENO, lastWords.constData(), static_cast<std::size_t>(lastWords.size()));
    static_cast<void>(written);
    _exit(EXIT_FAILURE);
}

bool limitTime(int seconds, const QByteArray& text)
{
    lastWords = "zrthumbnailer: " + text + '\n';
    struct sigaction action = {};
    action.sa_handler = onTimeout;
    // A second later the kernel ends the process itself.
    const auto most = static_cast<rlim_t>(seconds);
    return sigaction(SIGXCPU, &action, nullptr) == 0 && limit(RLIMIT_CPU, most, most + 1);
}

bool limitMemory(int mebibytes)
{
    const auto bytes = static_cast<rlim_t>(mebibytes) << 20U;
    return limit(RLIMIT_AS, bytes, bytes);
}

} // namespace

QByteArrayList confine(const Limits& limits, const QByteArray& timeoutText)
{
    QByteArrayList refused;
    const auto require = [&refused](bool isDone, const char* otherwise) {
        if (!isDone)
            refused.append(otherwise);
    };
    require(limits.seconds == 0 || limitTime(limits.seconds, timeoutText), "processor time is not limited");
    require(limits.mebibytes == 0 || limitMemory(limits.mebibytes), "address space is not limited");
    // One would hold what the file did to the process.
    require(limit(RLIMIT_CORE, 0, 0), "core files are not prevented");
    require(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0, "privileges can be gained");
    require(filterCalls(), "system calls are not filtered");
    return refused;
}

} // namespace zr::desktop
