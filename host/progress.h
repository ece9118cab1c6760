// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

namespace zr
{

/// The line on stderr that shows how far a long run is. Not shown when stderr is not a terminal that can move the
/// cursor, for a few files only, or when the run is quiet. It is drawn at most ten times a second; a thread draws
/// changes in between, so that the line is also right during a file that takes long.
class Progress
{
public:
    explicit Progress(bool quiet);
    /// Erases the line.
    ~Progress();
    Q_DISABLE_COPY(Progress)

    /// Shows how many files a walk through folders has found so far.
    void showListing(int found);

    /// The files are listed: there are `total`. Erases the listing.
    void begin(int total);

    /// Shows that the file `name`, the `number`th, is being processed.
    void showFile(int number, const QString& name, int failures);

    /// Prints a line, with its end, to stdout or stderr. During a run, all lines must be printed by this.
    void print(std::FILE* stream, const QString& text);

    /// Erases the line for good, after `done` files. On terminals, reports how many failed, if any.
    void end(int done, int failures);

private:
    struct Line {
        QString before;
        QString name; ///< the part that is shortened to the terminal's width
        QString after;
    };

    void show(const Line& line);
    void drawUntilEnded();
    void draw();
    void erase();
    void stop();

    const bool m_isQuiet;
    const bool m_stdoutIsTerminal;
    int m_total = 0;
    std::mutex m_mutex; // of what follows, and of both streams
    std::condition_variable m_changed;
    Line m_line;
    bool m_isStale = false; // the terminal shows another line
    bool m_isVisible = false;
    std::chrono::steady_clock::time_point m_nextDrawing;
    bool m_isEnded = false;
    std::thread m_drawing;
};

} // namespace zr
