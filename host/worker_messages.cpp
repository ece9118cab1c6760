// SPDX-License-Identifier: MIT
#include "host/worker_messages.h"

#include <QIODevice>

#include <algorithm>
#include <tuple>

namespace zr
{
namespace
{

// The fields of each message, in the order in which they are sent. What a worker does not need is left out.

auto fieldsOf(Options& options)
{
    return std::tie(options.output, options.sizePx, options.outputFolder, options.sheet, options.refreshes,
                    options.json, options.workerMegabytes, options.renderer, options.objReading, options.dataFolderUse,
                    options.server);
}

auto fieldsOf(WorkerStart& start)
{
    return std::tuple_cat(std::tie(start.version), fieldsOf(start.options));
}

auto fieldsOf(WorkerTask& task)
{
    return std::tie(task.index, task.file.shown, task.file.path, task.file.below, task.file.isShared);
}

auto fieldsOf(WorkerReply& reply)
{
    FileResult& result = reply.result;
    return std::tie(reply.kind, reply.index, result.picture, result.size, result.isCached, result.milliseconds,
                    result.failure.key, result.failure.reason, result.writeFault, result.note);
}

// As it is in memory: a PNG would take ten times as long.
void write(QDataStream& stream, const QImage& cell)
{
    // Other formats have colours elsewhere.
    const QImage sent = cell.isNull() || cell.depth() == 32 ? cell : cell.convertToFormat(QImage::Format_ARGB32);
    stream << sent.size() << sent.format()
           << QByteArray(reinterpret_cast<const char*>(sent.constBits()), static_cast<int>(sent.sizeInBytes()));
}

QImage readCell(QDataStream& stream)
{
    QSize size;
    auto format = QImage::Format_Invalid;
    QByteArray bytes;
    stream >> size >> format >> bytes;
    if (bytes.isEmpty())
        return {};
    QImage cell(size, format);
    if (cell.sizeInBytes() != bytes.size()) {
        stream.setStatus(QDataStream::ReadCorruptData);
        return {};
    }
    std::copy(bytes.cbegin(), bytes.cend(), reinterpret_cast<char*>(cell.bits()));
    return cell;
}

template <typename Message>
void writeFields(QDataStream& stream, const Message& message)
{
    Message copy = message;
    std::apply([&stream](const auto&... fields) { (stream << ... << fields); }, fieldsOf(copy));
}

template <typename Message>
void readFields(QDataStream& stream, Message& message)
{
    std::apply([&stream](auto&... fields) { (stream >> ... >> fields); }, fieldsOf(message));
}

template <typename Message>
QByteArray bytesOf(const Message& message)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    writeFields(stream, message);
    return bytes;
}

template <typename Message>
std::optional<Message> messageFrom(const QByteArray& bytes)
{
    Message message;
    QDataStream stream(bytes);
    readFields(stream, message);
    return stream.status() == QDataStream::Ok && stream.atEnd() ? std::optional(message) : std::nullopt;
}

} // namespace

QByteArray toBytes(const WorkerStart& start)
{
    return bytesOf(start);
}

QByteArray toBytes(const WorkerTask& task)
{
    return bytesOf(task);
}

QByteArray toBytes(const WorkerReply& reply)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    writeFields(stream, reply);
    write(stream, reply.result.cell);
    return bytes;
}

std::optional<WorkerStart> startFrom(const QByteArray& bytes)
{
    return messageFrom<WorkerStart>(bytes);
}

std::optional<WorkerTask> taskFrom(const QByteArray& bytes)
{
    return messageFrom<WorkerTask>(bytes);
}

std::optional<WorkerReply> replyFrom(const QByteArray& bytes)
{
    WorkerReply reply;
    QDataStream stream(bytes);
    readFields(stream, reply);
    reply.result.cell = readCell(stream);
    return stream.status() == QDataStream::Ok && stream.atEnd() ? std::optional(reply) : std::nullopt;
}

} // namespace zr
