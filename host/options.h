// SPDX-License-Identifier: MIT
#pragma once

#include "host/thumbnail_client.h"
#include "readers/mesh/obj_reading.h"

#include <QString>
#include <QStringList>

namespace zr
{

/// What the command line asks for.
struct Options {
    enum class Renderer { Auto, OpenGl, Software };
    enum class Action { MakeThumbnails, RunChecks, ShowText, RejectUsage };

    Action action = Action::MakeThumbnails;
    QString text; ///< what to show: help or version on stdout, a usage error on stderr

    QStringList files;                  ///< as given
    QString output;                     ///< PNG for the picture of the single file; empty for none
    int sizePx = 0;                     ///< side of the square that the output is fitted into; 0 leaves it as it is
    QString sheet;                      ///< PNG for the contact sheet; empty for none
    Renderer renderer = Renderer::Auto; ///< of models (Linux)
    ObjReading objReading = ObjReading::Server; ///< any but the server's leaves the data folder alone (Linux)
    DataFolderUse dataFolderUse = DataFolderUse::Usual;
    QString server; ///< DLL to use without registration (Windows)
    bool recursive = false;
    bool quiet = false;
};

/// Parses the arguments, the program's name first. To be called before the first request.
Options parseOptions(const QStringList& arguments);

} // namespace zr
