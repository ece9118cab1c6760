#include "readers/mesh/meminfo_text.h"

#include <cstdlib>
#include <cstring>

namespace zr
{
namespace
{

constexpr quint64 kBytesPerKilobyte = 1024;

// The number behind `name` in kilobytes, 0 when there is none.
quint64 kilobytes(const char* text, const char* name)
{
    const char* const line = std::strstr(text, name);
    return line ? std::strtoull(line + std::strlen(name), nullptr, 10) : 0;
}

} // namespace

std::optional<MemoryFigures> memoryFiguresFromMeminfo(const char* text)
{
    const quint64 total = kilobytes(text, "MemTotal:");
    const quint64 available = kilobytes(text, "MemAvailable:");
    if (total == 0 || available > total || !std::strstr(text, "MemAvailable:"))
        return std::nullopt;
    return MemoryFigures{available * kBytesPerKilobyte, static_cast<quint32>((total - available) * 100 / total)};
}

} // namespace zr
