#include "host/check.h"

#include "core/data_location.h"
#include "host/check_data.h"
#include "host/check_drawing.h"
#include "host/check_installation.h"
#include "host/console.h"

#include <QFile>
#include <QStringList>

namespace zr
{
namespace
{

constexpr int kAllIsWell = 0;
constexpr int kSomethingIsWrong = 1;

constexpr int kShownLogLines = 10;
constexpr qint64 kShownLogBytes = 8192;

// In the order of a request, so that the first failure is the one to mend first.
constexpr Findings (*kChecks[])() = {
    checkInstallation, checkQt, checkOpenGl, checkDataFolder, checkDatabase,
};

void print(const Finding& finding)
{
    printLine(stdout, printable(QStringLiteral("%1 %2: %3")
                                    .arg(finding.ok ? QStringLiteral("ok  ") : QStringLiteral("FAIL"), finding.what,
                                         finding.detail)));
}

void printEndOfLog()
{
    QFile log(defaultLogPath());
    if (!log.open(QIODevice::ReadOnly)) {
        print({true, QStringLiteral("log"), QStringLiteral("none yet")});
        return;
    }
    print({true, QStringLiteral("log"), QStringLiteral("the last lines of ") + defaultLogPath()});
    log.seek(qMax<qint64>(0, log.size() - kShownLogBytes));
    const QStringList lines = QString::fromLocal8Bit(log.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines.mid(qMax(0, lines.size() - kShownLogLines)))
        printLine(stdout, QLatin1String("       ") + printable(line));
}

} // namespace

int runChecks()
{
    int failures = 0;
    for (const auto& check : kChecks) {
        for (const Finding& finding : check()) {
            print(finding);
            failures += finding.ok ? 0 : 1;
        }
    }
    printEndOfLog();
    return failures == 0 ? kAllIsWell : kSomethingIsWrong;
}

} // namespace zr
