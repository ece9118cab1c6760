// SPDX-License-Identifier: MIT
#include "host/failure_reason.h"

#include "core/data_location.h"
#include "core/job/thumbnail_job.h"
#include "core/request_log.h"
#include "host/cache_fault.h"
#include "host/failure_keys.h"
#include "host/file_access.h"
#include "host/log_tail.h"
#include "host/qt_platform.h"
#include "readers/reader_table.h"

#include <QFileInfo>

namespace zr
{
namespace
{

// Why the file itself cannot be read.
Failure sourceFailure(const QString& path)
{
    constexpr struct {
        const char* reason;
        const char* key;
    } kKeys[] = {
        {reason::kNoSuchFile, key::kNoSuchFile},     {reason::kIsFolder, key::kIsFolder},
        {reason::kNotRegular, key::kNotRegular},     {reason::kLooseLink, key::kLooseLink},
        {reason::kNotPermitted, key::kNotPermitted},
    };
    const QString reason = sourceFault(path);
    for (const auto& row : kKeys) {
        if (reason == QLatin1String(row.reason))
            return {row.key, reason};
    }
    return reason.isEmpty() ? Failure() : Failure{key::kNotReadable, reason};
}

// Why there is nothing to read.
Failure contentFailure(const QFileInfo& file)
{
    if (!supportedSuffixes().contains(file.suffix(), Qt::CaseInsensitive))
        return {key::kNotSupported, reason::kNotSupported};
    return file.size() == 0 ? Failure{key::kEmpty, QStringLiteral("the file is empty")} : Failure();
}

// What the reader found.
Failure readersFailure(const QFileInfo& file, const RequestLog& log)
{
    const auto failure = log.firstAmong(readerFailures(file.suffix()));
    if (!failure)
        return {};
    const bool lacksDisplay = failure->reason == QByteArray(reason::kNoOpenGl) && openGlLacksDisplay();
    return {failure->key ? failure->key : key::kReader, lacksDisplay ? kOpenGlNeedsDisplay : failure->reason};
}

Failure cacheFailure(const QString& path)
{
    const QString reason = cacheFault(path);
    return reason.isEmpty() ? Failure() : Failure{key::kCache, reason};
}

Failure jobsFailure(const RequestLog& log)
{
    if (log.isEmpty())
        return {key::kReader, QStringLiteral("the reason is not known, since nothing could be written to the log, %1")
                                  .arg(defaultLogPath())};
    const auto failure = log.firstAmong({kNoPicture, kDatabaseNotOpen, kTableNotMade, kNotSaved});
    if (failure)
        return {failure->key, failure->reason};
    // An unexpected error ended the job without a log line, usually a size that does not fit into memory.
    if (!log.has(kJobFailed))
        return {key::kReader, reason::kDamagedOrNoMemory};
    return {key::kReader, QStringLiteral("no picture came back; see %1").arg(defaultLogPath())};
}

} // namespace

Failure failureOf(const QString& path, const QStringList& messages)
{
    const QFileInfo file(path);
    const RequestLog log(asLogged(path), messages);
    Failure failure = sourceFailure(path);
    if (failure.reason.isEmpty())
        failure = contentFailure(file);
    if (failure.reason.isEmpty())
        failure = readersFailure(file, log);
    // Also without a log, which may be missing for the same reason.
    if (failure.reason.isEmpty() && (log.isEmpty() || log.has(kNotSaved)))
        failure = cacheFailure(path);
    return failure.reason.isEmpty() ? jobsFailure(log) : failure;
}

Failure lostPicture(const QString& path, const QString& pngPath)
{
    if (!pngPath.isEmpty())
        return {key::kCache,
                QStringLiteral("the cached picture cannot be read: delete %1, which is made anew").arg(pngPath)};
    const Failure failure = cacheFailure(path);
    return failure.reason.isEmpty() ? Failure{key::kNotSaved, reason::kNotSaved} : failure;
}

} // namespace zr
