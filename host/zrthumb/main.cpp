// SPDX-License-Identifier: MIT
// zrthumb: makes thumbnails from the command line, by the same requests as the file browser.

#include "host/care.h"
#include "host/check/check.h"
#include "host/console.h"
#include "host/options.h"
#include "host/platform.h"
#include "host/renderer_setup.h"
#include "host/run.h"
#include "host/worker.h"
#include "host/worker_messages.h"

#include <QtGlobal>

#include <cstdio>

namespace
{

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

// Qt warns about much that a request can cope with: an unreachable display, a damaged picture. The host reports
// failures itself, one line each.
void dropWarnings(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        zr::printLine(stderr, qFormatLogMessage(type, context, message));
}

void keepToOwnMessages()
{
    if (qEnvironmentVariableIsEmpty("QT_LOGGING_RULES"))
        qInstallMessageHandler(dropWarnings);
}

int run(const zr::Options& options)
{
    switch (options.action) {
    case zr::Options::Action::ShowText:
        zr::printText(stdout, options.text);
        return 0;
    case zr::Options::Action::RejectUsage:
        zr::printText(stderr, options.text);
        return kWrongUsage;
    case zr::Options::Action::MakeThumbnails:
    case zr::Options::Action::RunChecks:
    case zr::Options::Action::PruneCache:
    case zr::Options::Action::ClearCache:
        break;
    }
    keepToOwnMessages();
    const bool usesDataFolder = options.dataFolderUse == zr::DataFolderUse::Usual;
    const QString fault = usesDataFolder ? zr::homeFault() : QString();
    if (!fault.isEmpty()) {
        zr::printLine(stderr, QLatin1String("zrthumb: ") + fault);
        return kFailed;
    }
    if (options.action == zr::Options::Action::PruneCache || options.action == zr::Options::Action::ClearCache)
        return zr::careForCache(options.action);
    zr::setUpRenderer(options);
    return options.action == zr::Options::Action::RunChecks ? zr::runChecks() : zr::makeThumbnails(options);
}

int runAsWorker()
{
    keepToOwnMessages();
    const int status = zr::runWorker();
    if (status == kWrongUsage)
        zr::printLine(stderr,
                      QStringLiteral("zrthumb: %1 is for the processes that -j starts").arg(zr::kWorkerArgument));
    return status;
}

// Output that did not get to stdout counts as a failure.
int withFaultOfStdout(int status)
{
    if (zr::stdoutFault().isEmpty())
        return status;
    zr::printLine(stderr, QStringLiteral("zrthumb: stdout cannot be written: ") + zr::stdoutFault());
    return status == 0 ? kFailed : status;
}

} // namespace

int main(int argc, char** argv)
{
    zr::openStandardStreams();
    const QStringList arguments = zr::commandLineArguments(argc, argv);
    const bool isWorker = arguments.mid(1) == QStringList(zr::kWorkerArgument);
    zr::leave(isWorker ? runAsWorker() : withFaultOfStdout(run(zr::parseOptions(arguments))));
}
