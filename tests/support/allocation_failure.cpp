// SPDX-License-Identifier: MIT
#include "tests/support/allocation_failure.h"

#include "tests/support/allocation_hooks.h"

#include <QString>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

#ifdef Q_OS_LINUX
#include <dlfcn.h>
#include <link.h>
#include <unwind.h>

extern "C" {
extern const char __executable_start; // NOLINT(bugprone-reserved-identifier): the linker's name
extern const char etext;
}
#endif

namespace zr::test
{
namespace
{

std::size_t failingBytes = 0;
Thrown failure = Thrown::BadAlloc;

// The state of the thread that counts, one at a time. Plain variables, since an allocation here would recurse.
// Volatile, since compilers assume that malloc() does not use the program's variables.
thread_local volatile bool isCounting = false;
int failingNumber = 0;
int madeNumber = 0;

// Of each counted allocation, while none is to fail.
std::vector<std::size_t> madeSites;

// The counted blocks that are alive, without memory of their own.
constexpr std::size_t kSlots = 1U << 16U;
std::array<const void*, kSlots> liveBlocks{};
std::atomic<int> liveNumber{0};
std::atomic_flag liveBlocksInUse = ATOMIC_FLAG_INIT;

class LiveBlocksLock
{
public:
    LiveBlocksLock()
    {
        while (liveBlocksInUse.test_and_set(std::memory_order_acquire)) {
        }
    }
    ~LiveBlocksLock() { liveBlocksInUse.clear(std::memory_order_release); }
    LiveBlocksLock(const LiveBlocksLock&) = delete;
    LiveBlocksLock& operator=(const LiveBlocksLock&) = delete;
};

// Probing continues past freed slots, so no entry has to move.
std::size_t firstSlot(const void* block)
{
    return (reinterpret_cast<std::uintptr_t>(block) >> 4U) * 2654435761U % kSlots;
}

#ifdef Q_OS_LINUX

// The functions that allocate the program's own strings, arrays, lists and pictures.
constexpr const char* kAllocatingFunctions[] = {
    "_ZN7QString",   "_ZNK7QString",  "_ZN10QByteArray", "_ZN9QArrayData",
    "_ZN9QListData", "_ZN9QHashData", "_ZN6QImageC",     "_ZN9QtPrivate12argToQString",
};
constexpr int kMaxQtFrames = 6;

bool isOwnCode(std::uintptr_t address)
{
    return address >= reinterpret_cast<std::uintptr_t>(&__executable_start) &&
           address < reinterpret_cast<std::uintptr_t>(&etext);
}

bool isAllocatingFunction(std::uintptr_t address)
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(address), &info) == 0 || !info.dli_sname)
        return false;
    return std::any_of(std::begin(kAllocatingFunctions), std::end(kAllocatingFunctions), [&info](const char* name) {
        return std::strncmp(info.dli_sname, name, std::strlen(name)) == 0;
    });
}

struct Walk {
    std::uintptr_t caller;
    std::uintptr_t calledByProgram = 0; ///< an address in the function of Qt that the program called
    bool reachedCaller = false;
    int frames = 0;
    bool reachedProgram = false;
};

_Unwind_Reason_Code visitFrame(_Unwind_Context* context, void* data)
{
    auto& walk = *static_cast<Walk*>(data);
    const auto address = static_cast<std::uintptr_t>(_Unwind_GetIP(context));
    walk.reachedCaller = walk.reachedCaller || address == walk.caller;
    if (!walk.reachedCaller)
        return _URC_NO_REASON;
    walk.reachedProgram = isOwnCode(address);
    if (walk.reachedProgram || ++walk.frames > kMaxQtFrames)
        return _URC_END_OF_STACK;
    walk.calledByProgram = address;
    return _URC_NO_REASON;
}

// Drivers and compilers allocate far more than the rest, and unwinding takes its time.
bool isCodeOfQt(const void* address)
{
    dl_find_object object{};
    return _dl_find_object(const_cast<void*>(address), &object) == 0 &&
           std::strstr(object.dlfo_link_map->l_name, "/libQt5");
}

bool isOwnAllocation(const void* caller)
{
    Walk walk{reinterpret_cast<std::uintptr_t>(caller)};
    if (isOwnCode(walk.caller))
        return true;
    if (!isCodeOfQt(caller))
        return false;
    _Unwind_Backtrace(visitFrame, &walk);
    return walk.reachedProgram && isAllocatingFunction(walk.calledByProgram);
}

// Of the innermost calls only: what is common to all formats has the same sites in each.
struct SiteHash {
    std::size_t value = 0;
    int frames = 0;
};
constexpr int kFramesOfSite = 4;

_Unwind_Reason_Code hashFrame(_Unwind_Context* context, void* data)
{
    auto& hash = *static_cast<SiteHash*>(data);
    const auto address = static_cast<std::uintptr_t>(_Unwind_GetIP(context));
    if (!isOwnCode(address))
        return _URC_NO_REASON;
    hash.value = (hash.value ^ address) * 1099511628211U;
    return ++hash.frames < kFramesOfSite ? _URC_NO_REASON : _URC_END_OF_STACK;
}

std::size_t site(const void*)
{
    SiteHash hash;
    _Unwind_Backtrace(hashFrame, &hash);
    return hash.value;
}

#else

bool isOwnAllocation(const void*)
{
    return true;
}

std::size_t site(const void* caller)
{
    return reinterpret_cast<std::size_t>(caller);
}

#endif

} // namespace

FailingAllocation::FailingAllocation(std::size_t bytes, Thrown thrown)
{
    failure = thrown;
    failingBytes = bytes;
}

FailingAllocation::~FailingAllocation()
{
    failingBytes = 0;
}

CountedAllocations::CountedAllocations(int failing)
{
    failingNumber = failing;
    madeNumber = 0;
    liveBlocks.fill(nullptr);
    liveNumber = 0;
    madeSites.clear();
    isCounting = true;
}

CountedAllocations::~CountedAllocations()
{
    isCounting = false;
}

int CountedAllocations::made() const
{
    return madeNumber;
}

std::vector<std::size_t> CountedAllocations::sites() const
{
    isCounting = false; // the copy is not the product's
    std::vector<std::size_t> sites = madeSites;
    isCounting = true;
    return sites;
}

int CountedAllocations::alive() const
{
    return liveNumber;
}

CountedAllocation countAllocation(const void* caller)
{
    if (!isCounting)
        return {false, false};
    isCounting = false;
    const bool counts = isOwnAllocation(caller);
    if (counts && failingNumber == 0)
        madeSites.push_back(site(caller));
    isCounting = true;
    return {counts, counts && ++madeNumber == failingNumber};
}

void addLiveBlock(const void* block)
{
    const LiveBlocksLock lock;
    std::size_t slot = firstSlot(block);
    while (liveBlocks[slot] != nullptr)
        slot = (slot + 1) % kSlots;
    liveBlocks[slot] = block;
    ++liveNumber;
}

void removeLiveBlock(const void* block)
{
    if (liveNumber == 0 || !block)
        return;
    static constexpr char freed = 0;
    const LiveBlocksLock lock;
    for (std::size_t slot = firstSlot(block); liveBlocks[slot] != nullptr; slot = (slot + 1) % kSlots) {
        if (liveBlocks[slot] == block) {
            liveBlocks[slot] = &freed;
            --liveNumber;
            return;
        }
    }
}

// The body of operator new. Its memory comes from the C library's malloc().
void* allocate(std::size_t bytes, const void* caller)
{
    if (bytes != 0 && bytes == failingBytes) {
        failingBytes = 0;
        if (failure == Thrown::ErrorKey)
            throw QStringLiteral("someErr");
        throw std::bad_alloc();
    }
    const CountedAllocation counted = countAllocation(caller);
    const bool wasCounting = isCounting;
    isCounting = false; // malloc() may count, too
    void* const block = counted.fails ? nullptr : std::malloc(bytes != 0 ? bytes : 1);
    isCounting = wasCounting;
    if (!block)
        throw std::bad_alloc();
    if (counted.counts)
        addLiveBlock(block);
    return block;
}

} // namespace zr::test

void* operator new(std::size_t bytes)
{
    return zr::test::allocate(bytes, __builtin_return_address(0));
}

void operator delete(void* memory) noexcept
{
    zr::test::removeLiveBlock(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    zr::test::removeLiveBlock(memory);
    std::free(memory);
}
