// SPDX-License-Identifier: MIT
#include "host/check/report.h"

#include "core/printable.h"
#include "host/console.h"

namespace zr
{
namespace
{

constexpr int kNothingFailed = 0;
constexpr int kSomethingFailed = 1;

QString markOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Ok:
        return QStringLiteral("ok  ");
    case Verdict::Note:
        return QStringLiteral("note");
    case Verdict::Fail:
        break;
    }
    return QStringLiteral("FAIL");
}

QString summary(int failures)
{
    if (failures == 0)
        return QStringLiteral("no problems found");
    if (failures == 1)
        return QStringLiteral("1 problem found");
    return QStringLiteral("%1 problems found; the first one is the one to mend first").arg(failures);
}

} // namespace

CheckReport& CheckReport::instance()
{
    static auto* const report = new CheckReport;
    return *report;
}

void CheckReport::add(const Finding& finding)
{
    const std::lock_guard<std::recursive_mutex> guard(m_mutex);
    // In one step, since a path may contain what looks like a placeholder.
    print(QStringLiteral("%1 %2: %3").arg(markOf(finding.verdict), finding.what, finding.detail));
    for (const QString& line : finding.quoted)
        print(QLatin1String("       ") + line);
    m_failures += finding.verdict == Verdict::Fail ? 1 : 0;
}

void CheckReport::add(const Findings& findings)
{
    for (const Finding& finding : findings)
        add(finding);
}

int CheckReport::end()
{
    const std::lock_guard<std::recursive_mutex> guard(m_mutex);
    print(summary(m_failures));
    m_hasEnded = true;
    return m_failures == 0 ? kNothingFailed : kSomethingFailed;
}

void CheckReport::print(const QString& line) const
{
    if (!m_hasEnded)
        printLine(stdout, printable(line));
}

} // namespace zr
