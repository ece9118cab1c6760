// SPDX-License-Identifier: MIT
#pragma once

#include "host/thumbnail_client.h"
#include "readers/mesh/obj_reading.h"

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace zr
{

/// What the command line asks for.
struct Options {
    enum class Renderer { Auto, OpenGl, Software };
    enum class Action { MakeThumbnails, RunChecks, PruneCache, ClearCache, ShowText, RejectUsage };

    Action action = Action::MakeThumbnails;
    QString text; ///< what to show: help or version on stdout, a usage error on stderr

    QStringList files;                  ///< as given
    QString output;                     ///< PNG for the picture of the single file; empty for none
    int sizePx = 0;                     ///< side of the square that the output is fitted into; 0 leaves it as it is
    QString outputFolder;               ///< folder for one PNG of each file; empty for none
    QString sheet;                      ///< PNG for the contact sheet; empty for none
    QString filesFrom;                  ///< file with the names of the files, in place of `files`; "-" is stdin
    bool endsWithZero = false;          ///< names end with a zero byte: those of `filesFrom`, and those on stdout
    bool refreshes = false;             ///< also outputs in `outputFolder` that are newer than their files
    bool json = false;                  ///< results as JSON
    int jobs = kNoJobs;                 ///< number of worker processes; kNoJobs leaves the choice to the run
    int workerMegabytes = 400;          ///< memory at which a worker process is replaced
    QProcessEnvironment environment;    ///< of the program at its start, for the workers
    Renderer renderer = Renderer::Auto; ///< of models (Linux)
    ObjReading objReading = ObjReading::Server; ///< any but the server's leaves the data folder alone (Linux)
    DataFolderUse dataFolderUse = DataFolderUse::Usual;
    QString server; ///< DLL to use without registration (Windows)
    bool recursive = false;
    bool quiet = false;

    static constexpr int kNoJobs = -1;

    /// The memory at which a worker process is replaced.
    qint64 workerBytes() const { return workerMegabytes * qint64(1000000); }

    /// Whether pictures are handed out anywhere but in the cache.
    bool hasOutputs() const { return !output.isEmpty() || !outputFolder.isEmpty() || !sheet.isEmpty(); }

    /// The same for stdout, where then nothing else may be printed.
    bool writesPictureToStdout() const { return output == QLatin1String("-") || sheet == QLatin1String("-"); }
};

/// Parses the arguments, the program's name first. To be called before the first request.
Options parseOptions(const QStringList& arguments);

} // namespace zr
