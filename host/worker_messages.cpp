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

constexpr int kCellDepth = 32;

// As it is in memory: a PNG would take ten times as long.
void write(QDataStream& stream, const QImage& cell)
{
    // Other formats have colours elsewhere.
    QImage sent = cell.isNull() || cell.depth() == kCellDepth ? cell : cell.convertToFormat(QImage::Format_ARGB32);
    // Lines of pixels that belong to another picture have more behind them.
    if (sent.bytesPerLine() != sent.width() * kCellDepth / 8)
        sent = sent.copy();
    stream << sent.size() << static_cast<qint32>(sent.format())
           << QByteArray(reinterpret_cast<const char*>(sent.constBits()), static_cast<int>(sent.sizeInBytes()));
}

// Qt divides by the depth, which unknown formats do not have.
bool isCellFormat(qint32 format)
{
    return format > QImage::Format_Invalid && format < QImage::NImageFormats &&
           QImage(1, 1, static_cast<QImage::Format>(format)).depth() == kCellDepth;
}

QImage readCell(QDataStream& stream)
{
    QSize size;
    qint32 format = 0;
    QByteArray bytes;
    stream >> size >> format >> bytes;
    if (bytes.isEmpty())
        return {};
    const bool fits = !size.isEmpty() && qint64(size.width()) * size.height() * (kCellDepth / 8) == bytes.size();
    if (!fits || !isCellFormat(format)) {
        stream.setStatus(QDataStream::ReadCorruptData);
        return {};
    }
    QImage cell(size, static_cast<QImage::Format>(format));
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
