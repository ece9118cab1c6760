#pragma once

#include <QString>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

namespace zr
{

/// The line on stderr that shows how far a long run is. Shows nothing when stderr is no terminal that can move the
/// cursor, for a few files only, or when the run is quiet. It is drawn ten times a second at most; what comes in
/// between is left to a thread, so that the line is right during a file that takes long, too.
class Progress
{
public:
    explicit Progress(bool quiet);
    /// Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Shows how many files a walk through folders has found so far.
    void showListing(int found);

    /// The files are listed: there are `total`. Takes the listing away.
    void begin(int total);

    /// Shows that the file `name` is in work, the `number`th.
    void showFile(int number, const QString& name, int failures);

    /// Prints a line to stdout or stderr, all of which are to be printed by this as long as the run goes on.
    void print(std::FILE* stream, const QString& text);

    /// Takes the line away for good, after `done` files. Tells on terminals how many failed, if any.
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
