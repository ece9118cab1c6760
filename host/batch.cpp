// SPDX-License-Identifier: MIT
#include "host/batch.h"

#include "host/failure_keys.h"

#include <algorithm>
#include <utility>

namespace zr
{
namespace
{

// One to read, and one to go on with while the run is busy.
constexpr std::size_t kTasksOfWorker = 2;

// Results wait for the one of an earlier file that takes long. A sheet's cell takes 160 kB.
constexpr std::size_t kMaxAhead = 4096;
constexpr std::size_t kMaxAheadWithCells = 128;

constexpr int kMaxStartFailures = 10;
constexpr int kMsBetweenLooks = 50;

FileResult failed(const char* key, const QString& reason)
{
    FileResult result;
    result.failure = {key, reason};
    return result;
}

} // namespace

Batch::Batch(const Options& options, int jobs, const FileList& files, OnResult onResult)
    : m_options(options), m_files(files), m_onResult(std::move(onResult)),
      m_jobs(std::min(static_cast<std::size_t>(jobs), files.size())),
      m_maxAhead(options.sheet.isEmpty() ? kMaxAhead : kMaxAheadWithCells)
{
    m_end.setSingleShot(true);
    QObject::connect(&m_end, &QTimer::timeout, &m_loop, [this] { goOn(); });
}

Batch::~Batch() = default;

void Batch::run(const std::function<bool()>& mustStop)
{
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [this, &mustStop] {
        m_isStopping = mustStop();
        goOn();
    });
    look.start(kMsBetweenLooks);
    goOn();
    if (!isDone())
        m_loop.exec();
    for (const auto& worker : m_workers)
        worker->finish();
    m_workers.clear();
}

bool Batch::isDone() const
{
    const auto isBusy = [](const auto& worker) { return !worker->tasks().empty(); };
    return m_reported == m_files.size() ||
           (m_isStopping && m_results.empty() && std::none_of(m_workers.begin(), m_workers.end(), isBusy));
}

// What there is to do after any event. Not called from within a worker's calls, since it destroys those that ended.
void Batch::goOn()
{
    for (const auto& worker : m_workers) {
        if (worker->hasEnded())
            takeBack(*worker);
    }
    const auto hasEnded = [](const auto& worker) { return worker->hasEnded(); };
    m_workers.erase(std::remove_if(m_workers.begin(), m_workers.end(), hasEnded), m_workers.end());
    startWorkers();
    assign();
    if (isDone())
        m_loop.quit();
}

// What a worker that has ended leaves.
void Batch::takeBack(const WorkerProcess& worker)
{
    m_returned.insert(worker.tasks().begin(), worker.tasks().end());
    if (worker.hasCrashed() && !worker.tasks().empty()) {
        m_returned.erase(worker.tasks().front());
        finish(worker.tasks().front(), failed(key::kReaderCrashed, QStringLiteral("the reader crashed")));
    }
    if (worker.hasNotStarted() && ++m_startFailures == kMaxStartFailures)
        giveUp(worker.startFault());
}

// Every file gets its result.
void Batch::giveUp(const QString& fault)
{
    const QString reason = QStringLiteral("no process to read it could be started: %1").arg(fault);
    while (next() < m_files.size())
        finish(begin(), failed(key::kNoWorker, reason));
}

void Batch::startWorkers()
{
    WorkerProcess::Listener listener;
    listener.onReady = [this] {
        m_startFailures = 0;
        assign();
    };
    listener.onResult = [this](std::size_t index, FileResult&& result) {
        finish(index, std::move(result));
        assign();
        if (isDone())
            m_loop.quit();
    };
    listener.onEnded = [this] { m_end.start(0); };
    while (mayBegin(next()) && m_workers.size() < m_jobs)
        m_workers.push_back(std::make_unique<WorkerProcess>(m_options, listener));
}

// Each worker has something to read before one gets more, and near the end none does.
void Batch::assign()
{
    const std::size_t left = m_files.size() - m_next;
    const std::size_t tasksOfWorker = left > kTasksOfWorker * m_jobs ? kTasksOfWorker : 1;
    for (std::size_t tasks = 1; tasks <= tasksOfWorker; ++tasks) {
        for (const auto& worker : m_workers) {
            if (worker->isReady() && worker->tasks().size() < tasks)
                assignTo(*worker);
        }
    }
}

void Batch::assignTo(WorkerProcess& worker)
{
    const std::size_t index = next();
    if (!mayBegin(index) || index >= m_reported + m_maxAhead)
        return;
    const ListedFile file = m_files.at(index);
    const bool sharesPng = file.isShared && m_options.dataFolderUse == DataFolderUse::Usual;
    const WorkerProcess* const reader = sharesPng ? readerOfSameName(index) : nullptr;
    if (!reader || reader == &worker)
        worker.send(begin(), file);
}

// A run that stops still reads the files before one that is done: results are reported in order.
bool Batch::mayBegin(std::size_t index) const
{
    return index < m_files.size() && (!m_isStopping || (!m_results.empty() && index < m_results.rbegin()->first));
}

const WorkerProcess* Batch::readerOfSameName(std::size_t index) const
{
    const uint name = m_files.nameHash(index);
    const auto hasName = [&](std::size_t task) { return m_files.nameHash(task) == name; };
    for (const auto& worker : m_workers) {
        if (std::any_of(worker->tasks().begin(), worker->tasks().end(), hasName))
            return worker.get();
    }
    return nullptr;
}

std::size_t Batch::next() const
{
    return m_returned.empty() ? m_next : *m_returned.begin();
}

std::size_t Batch::begin()
{
    const std::size_t index = next();
    if (m_returned.erase(index) == 0)
        ++m_next;
    return index;
}

void Batch::finish(std::size_t index, FileResult&& result)
{
    m_results.emplace(index, std::move(result));
    for (auto first = m_results.begin(); first != m_results.end() && first->first == m_reported;
         first = m_results.erase(first))
        m_onResult(m_reported++, std::move(first->second));
}

} // namespace zr
