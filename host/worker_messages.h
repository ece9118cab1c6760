// SPDX-License-Identifier: MIT
#pragma once

#include "host/file_list.h"
#include "host/file_task.h"
#include "host/options.h"

#include <QByteArray>
#include <QDataStream>

#include <optional>

namespace zr
{

// What a run and its worker processes say to each other, over the workers' stdin and stdout. A message is a QByteArray
// as QDataStream writes it: its length as four bytes, high byte first, and its contents. Both ends are of one build.

/// The argument that makes zrthumb a worker.
constexpr char kWorkerArgument[] = "--worker";

/// The first message to a worker.
struct WorkerStart {
    QString version; ///< of the run's program; a worker of another one says nothing
    Options options;
};

/// The messages after it, one for each file, in the order in which the files are to be read.
struct WorkerTask {
    quint64 index = 0;
    ListedFile file;
};

/// What a worker says: Ready once; then a Result for each file; Leaving at last, in place of the result for a file that
/// another worker is to read.
struct WorkerReply {
    enum class Kind : quint8 { Ready, Result, Leaving };

    Kind kind = Kind::Ready;
    quint64 index = 0; ///< of a result
    FileResult result;
};

QByteArray toBytes(const WorkerStart& start);
QByteArray toBytes(const WorkerTask& task);
QByteArray toBytes(const WorkerReply& reply);

/// What the bytes mean; nothing when they are not such a message.
std::optional<WorkerStart> startFrom(const QByteArray& bytes);
std::optional<WorkerTask> taskFrom(const QByteArray& bytes);
std::optional<WorkerReply> replyFrom(const QByteArray& bytes);

} // namespace zr
