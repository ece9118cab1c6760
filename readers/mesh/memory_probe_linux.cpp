// SPDX-License-Identifier: MIT
#include "readers/mesh/memory_probe.h"

#include <array>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/sysinfo.h>
#include <unistd.h>

namespace zr
{
namespace
{

// The lines that matter are at the top of /proc/meminfo.
constexpr std::size_t kMeminfoBytes = 512;

constexpr quint64 kBytesPerKilobyte = 1024;

// The number after `name` in kilobytes, 0 when there is none.
quint64 kilobytes(const char* text, const char* name)
{
    const char* const line = std::strstr(text, name);
    return line ? std::strtoull(line + std::strlen(name), nullptr, 10) : 0;
}

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

// Stays open: a program that makes thumbnails of hostile files can open no other one when it reads a model.
int meminfo()
{
    static const int file = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
    return file;
}

} // namespace

// Reading the figures takes as long as 300 triangles of an OBJ file, and these take less than 3 MB.
const int kTrianglesPerReading = 32768;

std::optional<MemoryFigures> memoryFiguresFromMeminfo(const char* text)
{
    const quint64 total = kilobytes(text, "MemTotal:");
    const quint64 available = kilobytes(text, "MemAvailable:");
    if (total == 0 || available > total || !std::strstr(text, "MemAvailable:"))
        return std::nullopt;
    return MemoryFigures{available * kBytesPerKilobyte, static_cast<quint32>((total - available) * 100 / total)};
}

MemoryFigures systemMemory()
{
    std::array<char, kMeminfoBytes + 1> text{};
    const ssize_t bytes = pread(meminfo(), text.data(), kMeminfoBytes, 0);
    const auto figures = bytes > 0 ? memoryFiguresFromMeminfo(text.data()) : std::nullopt;
    return figures ? *figures : figuresWithoutProc();
}

} // namespace zr
