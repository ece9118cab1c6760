#include "readers/mesh/memory_probe.h"

#include "readers/mesh/meminfo_text.h"

#include <array>
#include <cstdint>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/sysinfo.h>
#include <unistd.h>

namespace zr
{
namespace
{

// The lines that matter stand at the top of /proc/meminfo.
constexpr std::size_t kMeminfoBytes = 512;

// So many triangles take less than 3 MB of memory.
constexpr int kTrianglesPerReading = 32768;

constexpr std::size_t kLargePageBytes = std::size_t{2} << 20U;

// What is left to a system without /proc; counts the page cache as used.
MemoryFigures figuresWithoutProc()
{
    struct sysinfo info {
    };
    if (sysinfo(&info) != 0 || info.totalram == 0)
        return {0, 100};
    const quint64 available = quint64{info.freeram} + info.bufferram;
    const quint64 used = info.totalram - qMin<quint64>(available, info.totalram);
    return {available * info.mem_unit, static_cast<quint32>(used * 100 / info.totalram)};
}

MemoryFigures readFigures()
{
    std::array<char, kMeminfoBytes + 1> text{};
    const int file = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return figuresWithoutProc();
    const ssize_t bytes = read(file, text.data(), kMeminfoBytes);
    close(file);
    const auto figures = bytes > 0 ? memoryFiguresFromMeminfo(text.data()) : std::nullopt;
    return figures ? *figures : figuresWithoutProc();
}

} // namespace

// Reading the figures takes as long as 300 triangles of an OBJ file. The first triangle of a loop comes after a single
// query and has them read again.
MemoryFigures systemMemory(MemoryQuery query)
{
    thread_local MemoryFigures figures{};
    thread_local int trianglesToReading = 0;
    if (query == MemoryQuery::InLoop && --trianglesToReading > 0)
        return figures;
    trianglesToReading = query == MemoryQuery::InLoop ? kTrianglesPerReading : 0;
    figures = readFigures();
    return figures;
}

void expectSequentialFill(void* begin, std::size_t bytes)
{
    const auto address = reinterpret_cast<std::uintptr_t>(begin);
    const std::size_t toBoundary = (kLargePageBytes - address % kLargePageBytes) % kLargePageBytes;
    if (bytes < toBoundary + kLargePageBytes)
        return;
    const std::size_t wholePages = (bytes - toBoundary) / kLargePageBytes * kLargePageBytes;
    // A refusal costs speed only.
    madvise(static_cast<char*>(begin) + toBoundary, wholePages, MADV_HUGEPAGE);
}

} // namespace zr
