// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

namespace zr::desktop
{

/// What one process may take, since a damaged file may ask for anything.
struct Limits {
    int seconds = 20;     ///< of processor time, 0 for any
    int mebibytes = 2048; ///< of address space, 0 for any
};

/// What the command line asks for. Names of files are bytes: they need not be text in any encoding.
struct Options {
    enum class Action { MakeThumbnail, ShowText, RejectUsage };

    Action action = Action::MakeThumbnail;
    QByteArray text;   ///< for the other two actions, with its line ends
    QByteArray input;  ///< a path or a file: URI
    QByteArray output; ///< a path, or kStdout
    int sizePx = 256;  ///< the longest side
    Limits limits;
    bool isVerbose = false;

    static constexpr char kStdout[] = "-";
};

Options parseOptions(int argc, char** argv);

} // namespace zr::desktop
