#pragma once

#include <QtGlobal>

#include <algorithm>

namespace zr
{

/// Guesses from what a part of a file gave how much the rest of it will give, for buffers that shall hold all of it
/// and rarely be copied. Reserved memory that is not written to takes no physical memory.
class FillEstimate
{
public:
    explicit FillEstimate(qint64 fileBytes) : m_fileBytes(fileBytes) {}

    /// Tells where the first item stands in the file.
    void start(qint64 position) { m_firstPosition = position; }

    /// The capacity for a buffer that holds `used` of the `written` items that came up to `position`.
    double capacityFor(double used, double written, qint64 position) const
    {
        // The rest of a file may have shorter numbers than its beginning.
        constexpr double reserve = 1.25;
        constexpr double leastGrowth = 1.5;
        const double perByte = written / static_cast<double>(std::max<qint64>(position - m_firstPosition, 1));
        const double rest = perByte * static_cast<double>(std::max<qint64>(m_fileBytes - position, 0));
        return std::max(used + rest * reserve, used * leastGrowth);
    }

private:
    qint64 m_fileBytes;
    qint64 m_firstPosition = 0;
};

} // namespace zr
