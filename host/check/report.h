// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

#include <mutex>

namespace zr
{

/// What --check prints: a line for each finding as soon as there is one, and at the end how many failed. Whichever
/// thread ends it first has the last word.
class CheckReport
{
public:
    /// The one of this process. Never destroyed, as the process may end at any time.
    static CheckReport& instance();

    void add(const Finding& finding);
    void add(const Findings& findings);

    /// Prints the last line, and returns the program's exit status. Nothing is printed after that.
    int end();

private:
    void print(const QString& line) const;

    std::recursive_mutex m_mutex;
    int m_failures = 0;
    bool m_hasEnded = false;
};

} // namespace zr
