// SPDX-License-Identifier: MIT
#pragma once

#include "host/file_list.h"
#include "host/file_task.h"
#include "host/options.h"
#include "host/worker_process.h"

#include <QEventLoop>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace zr
{

/// Does a run's files in worker processes. A process that dies takes one file with it: the one that it was reading,
/// which is reported as failed. Files of equal names share a PNG in the cache, so they are read one after another.
class Batch
{
public:
    /// Is told the result for each file, in the order of the list.
    using OnResult = std::function<void(std::size_t index, FileResult&& result)>;

    /// `jobs` is the number of processes. All arguments but that outlive the batch.
    Batch(const Options& options, int jobs, const FileList& files, OnResult onResult);
    ~Batch();
    Q_DISABLE_COPY(Batch)

    /// Returns when all files are done, or, once `mustStop` says so, those up to the last one that is done.
    void run(const std::function<bool()>& mustStop);

private:
    bool isDone() const;
    void goOn();
    void takeBack(const WorkerProcess& worker);
    void giveUp(const QString& fault);
    void startWorkers();
    void assign();
    void assignTo(WorkerProcess& worker);
    const WorkerProcess* readerOfSameName(std::size_t index) const;
    bool mayBegin(std::size_t index) const;
    std::size_t next() const; ///< the file to begin next; the number of files when there is none
    std::size_t begin();      ///< the same, from now on begun
    void finish(std::size_t index, FileResult&& result);

    const Options& m_options;
    const FileList& m_files;
    const OnResult m_onResult;
    const std::size_t m_jobs;
    const std::size_t m_maxAhead;
    std::vector<std::unique_ptr<WorkerProcess>> m_workers;
    std::set<std::size_t> m_returned;            ///< begun, but to be read by another worker
    std::size_t m_next = 0;                      ///< the first file that has not been begun
    std::size_t m_reported = 0;                  ///< the first file without a reported result
    std::map<std::size_t, FileResult> m_results; ///< not reported yet
    int m_startFailures = 0;                     ///< in succession
    bool m_isStopping = false;
    QEventLoop m_loop;
    QTimer m_end; ///< goes on after what a worker that ends has called
};

} // namespace zr
