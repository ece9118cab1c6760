// SPDX-License-Identifier: MIT
#include "host/failure_reason.h"

#include "core/data_location.h"
#include "core/job/reader_table.h"
#include "core/job/thumbnail_job.h"
#include "host/cache_fault.h"
#include "host/file_access.h"
#include "host/log_tail.h"
#include "host/qt_platform.h"

#include <QFileInfo>

#include <algorithm>

namespace zr
{
namespace
{

// What one request logged, and for which file.
class RequestLog
{
public:
    RequestLog(const QString& path, const QStringList& messages) : m_path(asLogged(path)), m_messages(messages) {}

    bool isEmpty() const { return m_messages.isEmpty(); }

    bool has(const FailureLine& line) const
    {
        return std::any_of(m_messages.cbegin(), m_messages.cend(),
                           [&](const QString& message) { return isLine(message, line, m_path); });
    }

    // The reason of the first of `lines` that the log has; empty when it has none of them.
    QLatin1String reasonAmong(const FailureLines& lines) const
    {
        const auto line = std::find_if(lines.cbegin(), lines.cend(), [this](const auto& row) { return has(row); });
        return line == lines.cend() ? QLatin1String() : QLatin1String(line->reason);
    }

private:
    QString m_path;
    const QStringList& m_messages;
};

// Why there is nothing to read; empty when there is something.
QString contentFault(const QFileInfo& file)
{
    if (!supportedSuffixes().contains(file.suffix(), Qt::CaseInsensitive))
        return QLatin1String(reason::kNotSupported);
    return file.size() == 0 ? QStringLiteral("the file is empty") : QString();
}

// What the reader found; empty when it found nothing.
QString readersReason(const QFileInfo& file, const RequestLog& log)
{
    const QLatin1String reason = log.reasonAmong(readerFailures(file.suffix()));
    const bool lacksOpenGl = reason == QLatin1String(reason::kNoOpenGl);
    return lacksOpenGl && openGlLacksDisplay() ? QLatin1String(kOpenGlNeedsDisplay) : reason;
}

QString jobsReason(const RequestLog& log)
{
    if (log.isEmpty())
        return QStringLiteral("the reason is not known, since nothing could be written to the log, %1")
            .arg(defaultLogPath());
    const QLatin1String reason = log.reasonAmong({kNoPicture, kDatabaseNotOpen, kTableNotMade, kNotSaved});
    if (!reason.isEmpty())
        return reason;
    // An unexpected error ended the job without a log line, usually a size that does not fit into memory.
    if (!log.has(kJobFailed))
        return QLatin1String(reason::kDamagedOrNoMemory);
    return QStringLiteral("no picture came back; see %1").arg(defaultLogPath());
}

} // namespace

QString failureReason(const QString& path, const QStringList& messages)
{
    const QFileInfo file(path);
    const RequestLog log(path, messages);
    QString reason = sourceFault(path);
    if (reason.isEmpty())
        reason = contentFault(file);
    if (reason.isEmpty())
        reason = readersReason(file, log);
    // Also without a log, which may be missing for the same reason.
    if (reason.isEmpty() && (log.isEmpty() || log.has(kNotSaved)))
        reason = cacheFault(path);
    return reason.isEmpty() ? jobsReason(log) : reason;
}

QString lostPictureReason(const QString& path, const QString& pngPath)
{
    if (!pngPath.isEmpty())
        return QStringLiteral("the cached picture cannot be read: delete %1, which is made anew").arg(pngPath);
    const QString reason = cacheFault(path);
    return reason.isEmpty() ? QLatin1String(reason::kNotSaved) : reason;
}

} // namespace zr
