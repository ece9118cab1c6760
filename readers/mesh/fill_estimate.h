// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <algorithm>

namespace zr
{

/// Guesses from what a part of a file gave how much the rest of it will give, for buffers that shall hold all of it
/// and rarely be copied.
class FillEstimate
{
public:
    explicit FillEstimate(qint64 fileBytes) : m_fileBytes(fileBytes) {}

    /// How many items may come after the `count` ones up to `position`, where the first call is at the first item.
    double itemsToCome(qint64 count, qint64 position)
    {
        // The rest of a file may have shorter numbers than its beginning.
        constexpr double reserve = 1.25;
        if (count == 0)
            m_firstPosition = position;
        const auto bytes = static_cast<double>(std::max<qint64>(position - m_firstPosition, 1));
        const auto rest = static_cast<double>(std::max<qint64>(m_fileBytes - position, 0));
        return static_cast<double>(count) / bytes * rest * reserve;
    }

private:
    qint64 m_fileBytes;
    qint64 m_firstPosition = 0;
};

/// The capacity for a buffer that is full with `used` items when `toCome` ones are expected. Reserved memory that is
/// not written to takes no physical memory.
inline double grownCapacity(double used, double toCome)
{
    constexpr double minGrowth = 1.5;
    return std::max(used + toCome, used * minGrowth);
}

} // namespace zr
