// SPDX-License-Identifier: MIT
#include "desktop/run.h"

#include "core/png_bytes.h"
#include "desktop/confinement.h"
#include "desktop/messages.h"
#include "desktop/options.h"
#include "desktop/picture.h"
#include "desktop/source_file.h"
#include "desktop/target_file.h"

#include <QtGlobal>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace zr::desktop
{
namespace
{

enum ExitStatus { Written = 0, NotWritten = 1, WrongUsage = 2 };

// A file that is opened must not become what is printed to.
void openStandardStreams()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        // open() returns the lowest free number.
        if (fcntl(descriptor, F_GETFD) == -1 && open("/dev/null", O_RDWR) != descriptor)
            std::_Exit(NotWritten);
    }
}

void ignoreMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

int printText(std::FILE* stream, const QByteArray& text, ExitStatus status)
{
    const auto size = static_cast<std::size_t>(text.size());
    const bool isPrinted = std::fwrite(text.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
    return isPrinted ? status : std::max(status, NotWritten);
}

int fail(const QByteArray& file, const QByteArray& reason, ExitStatus status)
{
    printError(shown(file) + ": " + reason);
    return status;
}

int makeThumbnailFile(const Options& options)
{
    SourceFile source;
    QByteArray reason = source.open(options.input);
    if (!reason.isEmpty())
        return fail(options.input, "no thumbnail: " + reason, NotWritten);
    TargetFile target;
    reason = target.open(options.output, source);
    if (!reason.isEmpty())
        return fail(options.output, reason, target.isMistaken() ? WrongUsage : NotWritten);

    prepareReading(source);
    const QByteArray timeout = shown(options.input) + ": no thumbnail: it takes more than " +
                               QByteArray::number(options.limits.seconds) + " seconds; see --time-limit";
    for (const QByteArray& refused : confine(options.limits, timeout))
        if (options.isVerbose)
            printError("this system confines less: " + refused);

    const Thumbnail thumbnail = makeThumbnail(source, options.sizePx);
    if (thumbnail.picture.isNull())
        return fail(options.input, "no thumbnail: " + thumbnail.reason, NotWritten);
    const QByteArray png = pngBytes(thumbnail.picture);
    reason = png.isEmpty() ? QByteArray("the picture cannot be encoded") : target.write(png);
    return reason.isEmpty() ? Written : fail(options.output, reason, NotWritten);
}

} // namespace

int run(int argc, char** argv)
{
    openStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);
    qInstallMessageHandler(ignoreMessage);
    const Options options = parseOptions(argc, argv);
    switch (options.action) {
    case Options::Action::ShowText:
        return printText(stdout, options.text, Written);
    case Options::Action::RejectUsage:
        return printText(stderr, options.text, WrongUsage);
    case Options::Action::MakeThumbnail:
        break;
    }
    return makeThumbnailFile(options);
}

} // namespace zr::desktop
