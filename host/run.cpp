// SPDX-License-Identifier: MIT
#include "host/run.h"

#include "host/application.h"
#include "host/batch.h"
#include "host/console.h"
#include "host/file_list.h"
#include "host/file_task.h"
#include "host/interruption.h"
#include "host/output_check.h"
#include "host/progress.h"
#include "host/report.h"

#include <QFileInfo>
#include <QThread>

namespace zr
{
namespace
{

constexpr int kAllSucceeded = 0;
constexpr int kSomeFailed = 1;
constexpr int kWrongUsage = 2;

constexpr std::size_t kMaxFilesInThisProcess = 100;

FileList listed(const Options& options, QString& fault, const std::function<void(std::size_t)>& onFound)
{
    if (options.filesFrom.isEmpty())
        return listFiles(options.files, options.recursive, onFound);
    return listNamedFiles(options.filesFrom, options.endsWithZero ? '\0' : '\n', options.recursive, fault, onFound);
}

// Whether what models leave in memory is nothing to worry about. Starting a process would take longer than few files
// do.
bool areFew(const FileList& files, qint64 maxBytes)
{
    if (files.size() > kMaxFilesInThisProcess)
        return false;
    qint64 bytes = 0;
    for (std::size_t i = 0; i < files.size(); ++i)
        bytes += memoryFor(files.at(i).path);
    return files.size() <= 1 || bytes <= maxBytes;
}

// The number of worker processes; 0 to work in this process.
int jobsFor(const Options& options, const FileList& files)
{
    if (options.jobs == Options::kNoJobs)
        return areFew(files, options.workerBytes()) ? 0 : 1;
    return options.jobs == 0 ? QThread::idealThreadCount() : options.jobs;
}

void showReading(Progress& progress, const ListedFile& file, const Report& report)
{
    progress.showFile(report.done() + 1, QFileInfo(file.path).fileName(), report.failures());
}

void runHere(const Options& options, const FileList& list, const Interruption& interruption, Progress& progress,
             Report& report)
{
    readObjAs(options.objReading);
    FileTask task(options);
    for (std::size_t i = 0; i < list.size() && !interruption.isRequested(); ++i) {
        const ListedFile file = list.at(i);
        showReading(progress, file, report);
        report.add(file, task.run(file));
    }
}

void runInWorkers(const Options& options, int jobs, const FileList& list, const Interruption& interruption,
                  Progress& progress, Report& report)
{
    if (options.sheet.isEmpty())
        makePlainApplication();
    else
        makeDrawingApplication();
    const auto onResult = [&](std::size_t index, FileResult&& result) {
        report.add(list.at(index), result);
        if (index + 1 < list.size())
            showReading(progress, list.at(index + 1), report);
    };
    if (list.size() > 0)
        showReading(progress, list.at(0), report);
    // The system ends programs whose output nobody reads, but not those that lead others.
    Batch(options, jobs, list, onResult).run([&interruption] { return interruption.isRequested() || stdoutIsGone(); });
}

int run(const Options& options, const FileList& list, Progress& progress)
{
    Report report(options, list, progress);
    const Interruption interruption;
    const int jobs = jobsFor(options, list);
    if (jobs == 0)
        runHere(options, list, interruption, progress, report);
    else
        runInWorkers(options, jobs, list, interruption, progress, report);
    report.end();
    progress.end(report.done(), report.failures());
    if (interruption.isRequested()) {
        progress.print(
            stderr, QStringLiteral("zrthumb: interrupted after %1 of %2 files\n").arg(report.done()).arg(list.size()));
        return interruption.status();
    }
    return report.isAllWell() ? kAllSucceeded : kSomeFailed;
}

} // namespace

int makeThumbnails(const Options& options)
{
    Progress progress(options.quiet);
    const auto showFound = [&progress](std::size_t found) { progress.showListing(static_cast<int>(found)); };
    QString fault;
    const FileList list = listed(options, fault, showFound);
    progress.begin(static_cast<int>(list.size()));
    if (fault.isEmpty())
        fault = outputFault(options, list);
    if (!fault.isEmpty()) {
        progress.print(stderr, QStringLiteral("zrthumb: %1\nTry 'zrthumb --help'.\n").arg(fault));
        return kWrongUsage;
    }
    return run(options, list, progress);
}

} // namespace zr
