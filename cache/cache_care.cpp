// SPDX-License-Identifier: MIT
#include "cache/cache_care.h"

#include "cache/cache_rows.h"
#include "cache/row_paths.h"
#include "core/data_location.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QThread>

#include <algorithm>

namespace zr
{
namespace
{

// A request saves its PNG before it records it, and may wait 5 seconds for the database to look its row up and 5 more
// to insert it. Some file systems count time in steps of 2 seconds.
constexpr qint64 kRequestMs = 12000;

// Requests that never end make new pictures all the time.
constexpr int kMaxRounds = 3;

constexpr unsigned long kPauseMs = 50;

qint64 modificationMs(const QFileInfo& file)
{
    return file.lastModified().toMSecsSinceEpoch();
}

qint64 nowMs()
{
    return QDateTime::currentMSecsSinceEpoch();
}

class CacheCare
{
public:
    explicit CacheCare(const CareCallbacks& callbacks) : m_callbacks(callbacks) { m_clock.start(); }

    void removeRows(qint64 (CacheRows::*removal)())
    {
        CacheRows rows([this] { return isCancelled(); });
        m_result.rows = (rows.*removal)();
        noteErrorOf(rows);
    }

    void removePictures()
    {
        qint64 waitMs = goesOn() ? removeOrphans() : 0;
        for (int round = 1; round < kMaxRounds && waitMs > 0; ++round) {
            wait(waitMs);
            waitMs = goesOn() ? removeOrphans() : 0;
        }
    }

    const CareResult& result() const { return m_result; }

private:
    // A picture that was too young to be removed.
    struct Sighting {
        qint64 modifiedMs = 0; ///< as the file system has it; may be in the future
        qint64 ageMs = 0;      ///< at least
        qint64 atMs = 0;       ///< by m_clock
    };

    bool isCancelled()
    {
        m_result.isInterrupted = m_result.isInterrupted || (m_callbacks.isCancelled && m_callbacks.isCancelled());
        return m_result.isInterrupted;
    }

    bool goesOn() { return m_result.databaseError.isEmpty() && !isCancelled(); }

    void noteErrorOf(const CacheRows& rows)
    {
        m_result.databaseError = rows.error();
        m_result.isDatabaseBusy = rows.isBusy();
    }

    void wait(qint64 ms)
    {
        if (m_callbacks.onWait)
            m_callbacks.onWait();
        const qint64 endMs = m_clock.elapsed() + ms;
        while (m_clock.elapsed() < endMs && !isCancelled())
            QThread::msleep(kPauseMs);
    }

    QStringList listPictures()
    {
        m_listedMs = nowMs();
        m_listedAtMs = m_clock.elapsed();
        if (isGone(m_folder))
            return {};
        m_result.keptPictures = 0; // those of an earlier round are met again
        m_result.isFolderClosed = !QDir(m_folder).isReadable();
        QStringList names;
        QDirIterator each(m_folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
        while (each.hasNext()) {
            each.next();
            if (each.fileName().endsWith(QLatin1String(".png")))
                names.append(each.fileName());
        }
        return names;
    }

    // Returns how long to wait for those that are too young; 0 when there are none. The rows are read after the folder:
    // what is old in the list has got its row before, if it gets one.
    qint64 removeOrphans()
    {
        const QStringList names = listPictures();
        if (names.isEmpty())
            return 0;
        CacheRows rows([this] { return isCancelled(); });
        const NamedPictures named = rows.pictures();
        noteErrorOf(rows);
        qint64 waitMs = 0;
        for (const QString& name : names) {
            if (!goesOn())
                return 0;
            if (!named.contains(name))
                waitMs = std::max(waitMs, removeWhenOld(QFileInfo(m_folder + name)));
        }
        return waitMs;
    }

    // Returns how much time it lacks; 0 when it is not to be waited for. Its time is read only now, since a request may
    // have made it anew.
    qint64 removeWhenOld(const QFileInfo& file)
    {
        if (!file.isFile() || file.isSymLink())
            return 0;
        const qint64 modifiedMs = modificationMs(file);
        if (wasOldInTheList(file.fileName(), modifiedMs)) {
            removeFile(file);
            return 0;
        }
        const qint64 ageMs = std::clamp<qint64>(nowMs() - modifiedMs, 0, kRequestMs);
        m_young.insert(file.fileName(), {modifiedMs, ageMs, m_clock.elapsed()});
        return std::max<qint64>(kRequestMs - ageMs, 1);
    }

    // By its time stamp, or by what was seen of it, as its stamp may be one of the future.
    bool wasOldInTheList(const QString& name, qint64 modifiedMs) const
    {
        const auto seen = m_young.constFind(name);
        const bool isUnchanged = seen != m_young.constEnd() && seen->modifiedMs == modifiedMs;
        return m_listedMs - modifiedMs >= kRequestMs ||
               (isUnchanged && seen->ageMs + m_listedAtMs - seen->atMs >= kRequestMs);
    }

    void removeFile(const QFileInfo& info)
    {
        QFile file(info.filePath());
        if (file.remove()) {
            ++m_result.pictures;
            m_result.bytes += info.size();
        } else if (!isGone(info.filePath()) && m_result.keptPictures++ == 0) {
            m_result.firstKept = info.filePath();
            m_result.keptReason = file.errorString();
        }
    }

    const CareCallbacks& m_callbacks;
    const QString m_folder = thumbnailImageFolder();
    CareResult m_result;
    QElapsedTimer m_clock;
    qint64 m_listedMs = 0;   ///< when the folder was listed, by the system's time
    qint64 m_listedAtMs = 0; ///< the same by m_clock
    QHash<QString, Sighting> m_young;
};

CareResult care(const CareCallbacks& callbacks, qint64 (CacheRows::*remove)())
{
    CacheCare care(callbacks);
    care.removeRows(remove);
    care.removePictures();
    return care.result();
}

} // namespace

CareResult pruneCache(const CareCallbacks& callbacks)
{
    return care(callbacks, &CacheRows::removeGone);
}

CareResult clearCache(const CareCallbacks& callbacks)
{
    return care(callbacks, &CacheRows::removeAll);
}

} // namespace zr
