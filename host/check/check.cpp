// SPDX-License-Identifier: MIT
#include "host/check/check.h"

#include "host/check/data.h"
#include "host/check/database.h"
#include "host/check/drawing.h"
#include "host/check/installation.h"
#include "host/check/log.h"
#include "host/check/report.h"
#include "host/check/request.h"
#include "host/check/watch.h"
#include "host/platform.h"
#include "host/qt_platform.h"

#include <QtGlobal>

#include <algorithm>

namespace zr
{
namespace
{

struct Check {
    Findings (*run)();
    const char* what;
    const char* whenStuck; ///< what to do when it does not end
};

// In the order of a request, so that the first failure is the one to fix first. The request itself comes last.
constexpr Check kChecks[] = {
    {checkInstallation, "installation", "the system does not answer; restart it"},
    {checkQt, "Qt", "the display does not answer; start it anew, or unset DISPLAY and WAYLAND_DISPLAY"},
    {checkOpenGl, "OpenGL", "the graphics driver does not answer; install it anew"},
    {checkDataFolder, "data folder", "its disk does not answer; see whether it is connected"},
    {checkDatabase, "database", "its disk does not answer; see whether it is connected"},
    {checkLog, "log", "its disk does not answer; see whether it is connected"},
};
constexpr const char* kRequest = "sample";
constexpr const char* kWhenRequestIsStuck = "its request does not end; the end of the log tells how far it came";

QtMessageHandler previousHandler = nullptr;

// Qt would abort the process when this returns.
void reportFatalMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type != QtFatalMsg) {
        previousHandler(type, context, message);
        return;
    }
    CheckReport& report = CheckReport::instance();
    report.add({Verdict::Fail, QStringLiteral("Qt"), qtFailure(message)});
    leave(report.end());
}

bool hasFailed(const Findings& findings)
{
    return std::any_of(findings.cbegin(), findings.cend(),
                       [](const Finding& finding) { return finding.verdict == Verdict::Fail; });
}

} // namespace

int runChecks()
{
    previousHandler = qInstallMessageHandler(reportFatalMessage);
    CheckReport& report = CheckReport::instance();
    CheckWatch watch;
    bool drawsModels = true;
    for (const Check& check : kChecks) {
        watch.begin(check.what, check.whenStuck);
        const Findings findings = check.run();
        report.add(findings);
        if (check.run == checkOpenGl)
            drawsModels = !hasFailed(findings);
    }
    watch.begin(kRequest, kWhenRequestIsStuck);
    report.add(checkRequests(drawsModels));
    watch.end();
    return report.end();
}

} // namespace zr
