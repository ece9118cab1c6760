// SPDX-License-Identifier: MIT
#include "host/check/watch.h"

#include "host/check/report.h"
#include "host/platform.h"

#include <chrono>

namespace zr
{
namespace
{

// More than a request can wait for a database that is in use: 5 seconds, up to four times.
constexpr std::chrono::seconds kMaxCheckTime(40);

} // namespace

CheckWatch::CheckWatch() : m_thread(&CheckWatch::watch, this) {}

CheckWatch::~CheckWatch()
{
    end();
    m_thread.join();
}

void CheckWatch::begin(const char* what, const char* whenStuck)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_what = what;
    m_whenStuck = whenStuck;
    ++m_begun;
    m_changed.notify_one();
}

void CheckWatch::end()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_ended = true;
    m_changed.notify_one();
}

void CheckWatch::watch()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_ended) {
        const int seen = m_begun;
        const auto hasMovedOn = [&] { return m_ended || m_begun != seen; };
        if (m_changed.wait_for(lock, kMaxCheckTime, hasMovedOn))
            continue;
        CheckReport& report = CheckReport::instance();
        report.add({Verdict::Fail, QLatin1String(m_what),
                    QStringLiteral("no end after %1 seconds: %2")
                        .arg(QString::number(kMaxCheckTime.count()), QLatin1String(m_whenStuck))});
        leave(report.end());
    }
}

} // namespace zr
