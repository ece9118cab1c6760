// SPDX-License-Identifier: MIT
#include "core/request_log.h"

#include <algorithm>

namespace zr
{

bool RequestLog::has(const FailureLine& line) const
{
    return std::any_of(m_messages.cbegin(), m_messages.cend(),
                       [&](const QString& message) { return isLine(message, line, m_path); });
}

std::optional<FailureLine> RequestLog::firstAmong(const FailureLines& lines) const
{
    const auto line = std::find_if(lines.cbegin(), lines.cend(), [this](const auto& row) { return has(row); });
    return line == lines.cend() ? std::nullopt : std::optional(*line);
}

} // namespace zr
