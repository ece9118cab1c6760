// SPDX-License-Identifier: MIT
#pragma once

#include "core/failure_line.h"

#include <QStringList>

#include <optional>

namespace zr
{

/// What one request logged, and for which file.
class RequestLog
{
public:
    /// `path` is the file's as the log has it; `messages` are without time stamps.
    RequestLog(const QString& path, const QStringList& messages) : m_path(path), m_messages(messages) {}

    bool isEmpty() const { return m_messages.isEmpty(); }

    bool has(const FailureLine& line) const;

    /// The first of `lines` that the log has.
    std::optional<FailureLine> firstAmong(const FailureLines& lines) const;

private:
    QString m_path;
    QStringList m_messages;
};

} // namespace zr
