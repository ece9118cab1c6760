// SPDX-License-Identifier: MIT
#include "host/worker_process.h"

#include "host/platform.h"

#include <QDataStream>

#include <utility>

namespace zr
{
namespace
{

constexpr int kMostMsToEnd = 10000;

void write(QProcess& process, const QByteArray& message)
{
    QDataStream stream(&process);
    stream << message;
}

} // namespace

WorkerProcess::WorkerProcess(const Options& options, Listener listener) : m_listener(std::move(listener))
{
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process, [this] { read(); });
    const auto onEnd = [this] {
        read();
        end();
    };
    QObject::connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &m_process, onEnd);
    QObject::connect(
        &m_process, &QProcess::errorOccurred, &m_process,
        [onEnd](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                onEnd();
        },
        Qt::QueuedConnection);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // What this process has set for itself is not for others.
    m_process.setProcessEnvironment(options.environment);
    m_process.start(ownProgram(), {QLatin1String(kWorkerArgument)});
    write(m_process, toBytes(WorkerStart{QStringLiteral(ZRTHUMB_VERSION), options}));
}

WorkerProcess::~WorkerProcess()
{
    m_process.disconnect();
    finish();
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(kMostMsToEnd)) {
        m_process.kill();
        m_process.waitForFinished(kMostMsToEnd);
    }
}

void WorkerProcess::send(std::size_t index, const ListedFile& file)
{
    m_tasks.push_back(index);
    write(m_process, toBytes(WorkerTask{index, file}));
}

QString WorkerProcess::startFault() const
{
    if (m_process.error() == QProcess::FailedToStart || m_process.exitStatus() == QProcess::CrashExit)
        return m_process.errorString();
    return QStringLiteral("it ended at once, with status %1").arg(m_process.exitCode());
}

void WorkerProcess::read()
{
    QDataStream stream(&m_process);
    while (!hasEnded()) {
        QByteArray bytes;
        stream.startTransaction();
        stream >> bytes;
        if (!stream.commitTransaction())
            return;
        auto reply = replyFrom(bytes);
        if (!reply) {
            // Not a worker's: what it does from now on does not count.
            m_process.kill();
            return;
        }
        take(std::move(*reply));
    }
}

void WorkerProcess::take(WorkerReply&& reply)
{
    switch (reply.kind) {
    case WorkerReply::Kind::Ready:
        m_state = State::Ready;
        m_listener.onReady();
        break;
    case WorkerReply::Kind::Result:
        // Workers keep the order.
        if (m_tasks.empty() || m_tasks.front() != reply.index) {
            m_process.kill();
            break;
        }
        m_tasks.pop_front();
        m_listener.onResult(static_cast<std::size_t>(reply.index), std::move(reply.result));
        break;
    case WorkerReply::Kind::Leaving:
        m_state = State::Left;
        m_listener.onEnded();
        break;
    }
}

void WorkerProcess::end()
{
    if (hasEnded())
        return;
    m_state = m_state == State::Ready ? State::Crashed : State::NotStarted;
    m_listener.onEnded();
}

} // namespace zr
