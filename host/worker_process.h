// SPDX-License-Identifier: MIT
#pragma once

#include "host/worker_messages.h"

#include <QProcess>

#include <deque>
#include <functional>

namespace zr
{

/// A worker process, as its run sees it. Its thread needs an event loop.
class WorkerProcess
{
public:
    /// What it tells the run, from the event loop. None of these may destroy the worker.
    struct Listener {
        std::function<void()> onReady; ///< takes tasks from now on
        std::function<void(std::size_t index, FileResult&& result)> onResult;
        std::function<void()> onEnded; ///< leaves, has crashed or could not be started; called once
    };

    /// Starts the process.
    WorkerProcess(const Options& options, Listener listener);
    /// The same as finish(), and waits for the end.
    ~WorkerProcess();
    Q_DISABLE_COPY(WorkerProcess)

    void send(std::size_t index, const ListedFile& file);

    /// The tasks without a result, in their order.
    const std::deque<std::size_t>& tasks() const { return m_tasks; }

    /// Lets the process end after its tasks.
    void finish() { m_process.closeWriteChannel(); }

    bool isReady() const { return m_state == State::Ready; }
    bool hasEnded() const
    {
        return m_state == State::Left || m_state == State::Crashed || m_state == State::NotStarted;
    }

    /// Whether it ended while it read its first task.
    bool hasCrashed() const { return m_state == State::Crashed; }

    bool hasNotStarted() const { return m_state == State::NotStarted; }

    /// Why it could not be started.
    QString startFault() const;

private:
    enum class State { Starting, Ready, Left, Crashed, NotStarted };

    void read();
    void take(WorkerReply&& reply);
    void end();

    Listener m_listener;
    QProcess m_process;
    std::deque<std::size_t> m_tasks;
    State m_state = State::Starting;
};

} // namespace zr
