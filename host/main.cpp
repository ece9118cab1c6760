// zrthumb: makes thumbnails from the command line, by the same requests that the file browser makes.

#include "host/check.h"
#include "host/options.h"
#include "host/platform.h"
#include "host/run.h"

#include <QtGlobal>

#include <cstdio>

namespace
{

constexpr int kWrongUsage = 2;

// Qt warns of much that a request copes with: a display that cannot be reached, a damaged picture. The host tells
// failures itself, one line each.
void dropWarnings(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qFormatLogMessage(type, context, message).toLocal8Bit().constData());
}

} // namespace

int main(int argc, char** argv)
{
    const zr::Options options = zr::parseOptions(zr::commandLineArguments(argc, argv));
    switch (options.action) {
    case zr::Options::Action::ShowText:
        std::fputs(options.text.toLocal8Bit().constData(), stdout);
        return 0;
    case zr::Options::Action::RejectUsage:
        std::fputs(options.text.toLocal8Bit().constData(), stderr);
        return kWrongUsage;
    case zr::Options::Action::MakeThumbnails:
    case zr::Options::Action::RunChecks:
        break;
    }
    if (qEnvironmentVariableIsEmpty("QT_LOGGING_RULES"))
        qInstallMessageHandler(dropWarnings);
    zr::chooseQtPlatform();
    zr::leave(options.action == zr::Options::Action::RunChecks ? zr::runChecks() : zr::makeThumbnails(options));
}
