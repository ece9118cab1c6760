// SPDX-License-Identifier: MIT
// The functions at the end replace those of the C library, also for Qt and SQLite, and forward calls that no fault
// affects.

#include "tests/reliability/fault_hooks.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <limits>
#include <mutex>
#include <optional>
#include <vector>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace zr::test
{

struct InjectedFault::State {
    Fault fault;
    int seen = 0;
    std::atomic<int> hits{0};
};

/// The active faults.
class FaultList
{
public:
    using Entry = std::shared_ptr<InjectedFault::State>;

    bool isEmpty() const { return m_size == 0; }

    void add(const Entry& entry)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_entries.push_back(entry);
        m_size = m_entries.size();
    }

    void remove(const Entry& entry)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_entries.erase(std::remove(m_entries.begin(), m_entries.end(), entry), m_entries.end());
        m_size = m_entries.size();
    }

    // The fault that affects this call.
    Entry find(SystemCall call, const char* path)
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        for (const Entry& entry : m_entries) {
            const Fault& fault = entry->fault;
            if (fault.call != call || !std::strstr(path, fault.pathPart.constData()))
                continue;
            const int turn = entry->seen++ - fault.skipped;
            if (turn < 0 || (fault.count >= 0 && turn >= fault.count))
                continue;
            ++entry->hits;
            return entry;
        }
        return nullptr;
    }

private:
    std::mutex m_mutex;
    std::vector<Entry> m_entries;
    std::atomic<std::size_t> m_size{0};
};

namespace
{

// Never destroyed: the C library is called before and after all other objects of this program exist.
FaultList& faults()
{
    static auto* const list = new FaultList;
    return *list;
}

// Calls made by a fault itself must not be affected again.
thread_local bool insideFault = false;

FaultList::Entry touch(SystemCall call, const char* path)
{
    if (insideFault || faults().isEmpty())
        return nullptr;
    auto entry = faults().find(call, path);
    if (entry && entry->fault.before) {
        insideFault = true;
        entry->fault.before();
        insideFault = false;
    }
    return entry;
}

FaultList::Entry touch(SystemCall call, int file)
{
    if (insideFault || faults().isEmpty())
        return nullptr;
    char path[4096] = {};
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(file);
    if (readlink(link.constData(), path, sizeof path - 1) == -1)
        return nullptr;
    return touch(call, path);
}

// True if the call must fail; errno is set.
bool fails(const FaultList::Entry& entry)
{
    if (!entry || entry->fault.error == 0)
        return false;
    errno = entry->fault.error;
    return true;
}

std::size_t readable(const FaultList::Entry& entry, std::size_t bytes)
{
    return entry && entry->fault.maxBytes > 0 ? std::min(bytes, entry->fault.maxBytes) : bytes;
}

// The number of bytes of a write that still fit; nullopt if the whole call must fail.
std::optional<std::size_t> writable(const FaultList::Entry& entry, std::size_t bytes)
{
    if (!entry || entry->fault.error == 0)
        return bytes;
    const auto room = static_cast<std::size_t>(std::max<qint64>(entry->fault.room, 0));
    const std::size_t fitting = std::min(bytes, room);
    entry->fault.room = static_cast<qint64>(room - fitting);
    if (fitting > 0 || bytes == 0)
        return fitting;
    errno = entry->fault.error;
    return std::nullopt;
}

template <typename Function>
Function* realFunction(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int openFile(const char* name, const char* path, int flags, mode_t mode)
{
    const bool toRead = (flags & O_ACCMODE) == O_RDONLY;
    if (fails(touch(toRead ? SystemCall::OpenToRead : SystemCall::OpenToWrite, path)))
        return -1;
    return realFunction<int(const char*, int, ...)>(name)(path, flags, mode);
}

} // namespace

InjectedFault::InjectedFault(const Fault& fault) : m_state(std::make_shared<State>())
{
    m_state->fault = fault;
    faults().add(m_state);
}

InjectedFault::~InjectedFault()
{
    faults().remove(m_state);
}

int InjectedFault::hits() const
{
    return m_state->hits;
}

} // namespace zr::test

using zr::test::SystemCall;

// The system's headers have other parameter names.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
extern "C" {

int open(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return zr::test::openFile("open", path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return zr::test::openFile("open64", path, flags, mode);
}

int mkdir(const char* path, mode_t mode) noexcept
{
    if (zr::test::fails(zr::test::touch(SystemCall::MakeFolder, path)))
        return -1;
    return zr::test::realFunction<int(const char*, mode_t)>("mkdir")(path, mode);
}

ssize_t read(int file, void* buffer, size_t bytes)
{
    const auto fault = zr::test::touch(SystemCall::Read, file);
    if (zr::test::fails(fault))
        return -1;
    return zr::test::realFunction<ssize_t(int, void*, size_t)>("read")(file, buffer, zr::test::readable(fault, bytes));
}

ssize_t pread64(int file, void* buffer, size_t bytes, off64_t offset)
{
    if (zr::test::fails(zr::test::touch(SystemCall::Read, file)))
        return -1;
    return zr::test::realFunction<ssize_t(int, void*, size_t, off64_t)>("pread64")(file, buffer, bytes, offset);
}

ssize_t write(int file, const void* buffer, size_t bytes)
{
    const auto room = zr::test::writable(zr::test::touch(SystemCall::Write, file), bytes);
    return room ? zr::test::realFunction<ssize_t(int, const void*, size_t)>("write")(file, buffer, *room) : -1;
}

ssize_t pwrite64(int file, const void* buffer, size_t bytes, off64_t offset)
{
    const auto room = zr::test::writable(zr::test::touch(SystemCall::Write, file), bytes);
    return room ? zr::test::realFunction<ssize_t(int, const void*, size_t, off64_t)>("pwrite64")(file, buffer, *room,
                                                                                                 offset)
                : -1;
}

int fdatasync(int file)
{
    if (zr::test::fails(zr::test::touch(SystemCall::Sync, file)))
        return -1;
    return zr::test::realFunction<int(int)>("fdatasync")(file);
}

int statvfs64(const char* path, struct statvfs64* disk) noexcept
{
    const int result = zr::test::realFunction<int(const char*, struct statvfs64*)>("statvfs64")(path, disk);
    if (result == 0 && zr::test::touch(SystemCall::AskForRoom, path))
        disk->f_bavail = 0;
    return result;
}

int rename(const char* from, const char* to) noexcept
{
    if (zr::test::fails(zr::test::touch(SystemCall::Rename, to)))
        return -1;
    return zr::test::realFunction<int(const char*, const char*)>("rename")(from, to);
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
