// SPDX-License-Identifier: MIT
#include "host/worker.h"

#include "host/file_task.h"
#include "host/platform.h"
#include "host/renderer_setup.h"
#include "host/worker_messages.h"
#include "readers/mesh/obj_reading.h"

#include <QtEndian>

#include <cstdio>

namespace zr
{
namespace
{

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

// Whatever else may grow in libraries and drivers.
constexpr int kMaxFiles = 1000;

// No run sends more; what says otherwise is not a run.
constexpr quint32 kMaxMessageBytes = 1 << 24;

/// The next message; nothing at the end of stdin.
std::optional<QByteArray> readMessage()
{
    uchar head[4];
    if (std::fread(head, 1, sizeof head, stdin) != sizeof head)
        return std::nullopt;
    const auto size = qFromBigEndian<quint32>(head);
    if (size > kMaxMessageBytes)
        return std::nullopt;
    QByteArray bytes(static_cast<int>(size), Qt::Uninitialized);
    if (std::fread(bytes.data(), 1, size, stdin) != size)
        return std::nullopt;
    return bytes;
}

/// One worker process.
class Worker
{
public:
    Worker(const Options& options, std::FILE* run) : m_options(options), m_run(run), m_task(options) {}

    void work()
    {
        say({WorkerReply::Kind::Ready, 0, {}});
        while (const auto bytes = readMessage()) {
            const auto task = taskFrom(*bytes);
            if (!task || isTooLargeFor(task->file.path)) {
                say({WorkerReply::Kind::Leaving, 0, {}});
                return;
            }
            say({WorkerReply::Kind::Result, task->index, m_task.run(task->file)});
            ++m_done;
        }
    }

private:
    void say(const WorkerReply& reply)
    {
        const QByteArray bytes = toBytes(reply);
        const auto size = qToBigEndian(static_cast<quint32>(bytes.size()));
        std::fwrite(&size, 1, sizeof size, m_run);
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), m_run);
        std::fflush(m_run);
    }

    // A new process is as good as can be.
    bool isTooLargeFor(const QString& path) const
    {
        if (m_done == 0)
            return false;
        // The rest is for what is not counted here.
        return m_done == kMaxFiles || ownMemory() + memoryFor(path) > m_options.workerBytes() / 4 * 3;
    }

    const Options& m_options;
    std::FILE* const m_run;
    FileTask m_task;
    int m_done = 0;
};

} // namespace

int runWorker()
{
    std::FILE* const run = stdinIsTerminal() ? nullptr : followParent();
    const auto bytes = run ? readMessage() : std::nullopt;
    const auto start = bytes ? startFrom(*bytes) : std::nullopt;
    if (!start)
        return kWrongUsage;
    if (start->version != QLatin1String(ZRTHUMB_VERSION))
        return kFailed;
    // The run has found that there is one, or has no use for it.
    Q_UNUSED(homeFault())
    readObjAs(start->options.objReading);
    setUpRenderer(start->options);
    expectOthersInLog();
    Worker(start->options, run).work();
    return 0;
}

} // namespace zr
