// SPDX-License-Identifier: MIT
#include "host/failure_reason.h"

#include "core/data_location.h"
#include "core/job/thumbnail_job.h"
#include "core/request_log.h"
#include "host/cache_fault.h"
#include "host/file_access.h"
#include "host/log_tail.h"
#include "host/qt_platform.h"
#include "readers/reader_table.h"

#include <QFileInfo>

namespace zr
{
namespace
{

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
    const RequestLog log(asLogged(path), messages);
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
