// SPDX-License-Identifier: MIT
#pragma once

#include "core/append_file.h"
#include "core/failure_line.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <mutex>
#include <optional>

namespace zr
{

/// The process-wide text log beside the cache database.
///
/// Each line is a local time stamp, the message and a line feed, in the process's 8-bit code page. It is appended at
/// once and in one piece, even while other processes write theirs. Nothing here reports a failure: a line that cannot
/// be written is lost.
///
/// All functions may be called from any thread. A thread that has called init() keeps the instance it initialised
/// until that thread ends the instance itself, so another thread's end() never takes the path away from a request
/// that is still writing.
class LogFile : public std::enable_shared_from_this<LogFile>
{
public:
    /// Larger log files are deleted by init().
    static constexpr qint64 kMaxBytes = 104857600;

    /// The instance of this thread's request, else the process-wide one, which is created (with an empty path and
    /// a closed file) when there is none.
    static std::shared_ptr<LogFile> instance();

    /// Ends the calling thread's and the process-wide instance. The file is closed with the last thread that
    /// uses the instance; the next instance() starts afresh.
    static void end();

    Q_DISABLE_COPY(LogFile)
    ~LogFile() = default;

    /// Makes this the calling thread's instance and sets the path: `path` when it names a regular file, else the
    /// default log path. Deletes the file there when it has grown past kMaxBytes. Creates nothing and does not touch an
    /// open file.
    void init(const QString& path);

    /// Makes this the calling thread's instance, which from now on keeps its lines in memory and touches no file.
    void keepInMemory();

    /// Makes this the calling thread's instance, which from now on keeps its lines in memory as well.
    void keepCopy();

    /// The lines that it keeps, without time stamps.
    QStringList keptLines();

    /// Appends one line. Opens the file when it is not open; the line is lost when that fails.
    void write(const QString& message);

private:
    LogFile() = default;

    std::mutex m_mutex;
    QString m_path;
    AppendFile m_file;
    std::optional<QStringList> m_keptLines;
    bool m_touchesFile = true;
};

/// Writes the line "number text", the form of every line of the log.
void logLine(int number, const QString& text);

/// Writes the failure's line, with `rest` after the text where the line has Rest::Anything.
void logLine(const FailureLine& line, const QString& rest = QString());

/// Writes the line "number  throw " that precedes every thrown key, then throws `key` as a QString.
[[noreturn]] void throwKey(int number, const char* key);
[[noreturn]] void throwKey(const ThrownKey& failure);

} // namespace zr
