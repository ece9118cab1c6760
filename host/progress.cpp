// SPDX-License-Identifier: MIT
#include "host/progress.h"

#include "core/printable.h"
#include "host/console.h"
#include "host/platform.h"
#include "host/terminal.h"
#include "host/text_width.h"

#include <system_error>

namespace zr
{
namespace
{

constexpr int kFewFiles = 3;
constexpr std::chrono::milliseconds kInterval(100);
constexpr char kEraseLine[] = "\r\x1b[K";

void write(const QString& text)
{
    printText(stderr, text);
}

QString failed(int failures)
{
    return failures > 0 ? QStringLiteral(" (%1 failed)").arg(failures) : QString();
}

} // namespace

Progress::Progress(bool quiet) : m_isQuiet(quiet), m_stdoutIsTerminal(stdoutIsTerminal())
{
    if (quiet || !startControlSequences())
        return;
    try {
        m_drawing = std::thread([this] { drawUntilEnded(); });
    } catch (const std::system_error&) {
        // No thread is available. The run goes on without the line.
    }
}

Progress::~Progress()
{
    stop();
    erase();
    endControlSequences();
}

void Progress::showListing(int found)
{
    if (found > kFewFiles)
        show({QStringLiteral("listing: %1 files").arg(found), {}, {}});
}

void Progress::begin(int total)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_total = total;
    m_isStale = false;
    m_nextDrawing = {};
    erase();
}

void Progress::showFile(int number, const QString& name, int failures)
{
    if (m_total > kFewFiles)
        show({QStringLiteral("[%1/%2] ").arg(number).arg(m_total), name, failed(failures)});
}

void Progress::print(std::FILE* stream, const QString& text)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (m_isVisible && (stream == stderr || m_stdoutIsTerminal)) {
        erase();
        m_isStale = true;
        m_changed.notify_one();
    }
    printText(stream, text);
}

void Progress::end(int done, int failures)
{
    const bool isShown = m_drawing.joinable() && m_total > kFewFiles;
    stop();
    if (isShown) {
        m_line = {QStringLiteral("[%1/%2]").arg(done).arg(m_total), {}, failed(failures)};
        draw();
        erase();
    }
    if (!m_isQuiet && stderrIsTerminal() && m_total > 1 && failures > 0)
        printLine(stderr, QStringLiteral("zrthumb: %1 of %2 failed").arg(failures).arg(done));
}

void Progress::show(const Line& line)
{
    if (!m_drawing.joinable())
        return;
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_line = line;
    if (std::chrono::steady_clock::now() >= m_nextDrawing) {
        draw();
    } else if (!m_isStale) {
        m_isStale = true;
        m_changed.notify_one();
    }
}

void Progress::drawUntilEnded()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_isEnded) {
        m_changed.wait(lock, [this] { return m_isEnded || m_isStale; });
        m_changed.wait_until(lock, m_nextDrawing, [this] { return m_isEnded; });
        if (!m_isEnded && m_isStale && std::chrono::steady_clock::now() >= m_nextDrawing)
            draw();
    }
}

// On some terminals, a line that reaches the last cell would continue on the next one, which is never erased.
void Progress::draw()
{
    const int room = terminalColumns() - 1;
    const int nameRoom = room - cellsOf(m_line.before) - cellsOf(m_line.after);
    const QString line = m_line.before + fittedToCells(printable(m_line.name), nameRoom) + m_line.after;
    write(QLatin1Char('\r') + fittedToCells(line, room) + QLatin1String("\x1b[K"));
    m_isVisible = true;
    m_isStale = false;
    m_nextDrawing = std::chrono::steady_clock::now() + kInterval;
}

void Progress::erase()
{
    if (m_isVisible)
        write(QLatin1String(kEraseLine));
    m_isVisible = false;
}

void Progress::stop()
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_isEnded = true;
        m_changed.notify_one();
    }
    if (m_drawing.joinable())
        m_drawing.join();
}

} // namespace zr
