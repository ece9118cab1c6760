// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace zr::bench
{

/// Prints as usual and keeps the best time of each benchmark, for ratios within one run.
class BestTimeReporter final : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            double& best = m_seconds[run.run_name.function_name];
            const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            if (run.run_type == Run::RT_Iteration && (best == 0.0 || seconds < best))
                best = seconds;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    /// Seconds for one iteration of the benchmark `name`; 0 when it was not run.
    double bestSeconds(const std::string& name) const
    {
        const auto found = m_seconds.find(name);
        return found == m_seconds.end() ? 0.0 : found->second;
    }

private:
    std::map<std::string, double> m_seconds;
};

} // namespace zr::bench
