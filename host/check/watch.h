// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zr
{

/// Ends the program with a line in the report when a check does not end: with displays, drivers and disks, a call may
/// block for ever.
class CheckWatch
{
public:
    CheckWatch();
    ~CheckWatch();
    Q_DISABLE_COPY(CheckWatch)

    /// A check begins, and the one before has ended. Both texts must outlive this object.
    void begin(const char* what, const char* whenStuck);

    /// All checks have ended.
    void end();

private:
    void watch();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_begun = 0;
    bool m_ended = false;
    const char* m_what = "";
    const char* m_whenStuck = "";
    std::thread m_thread;
};

} // namespace zr
