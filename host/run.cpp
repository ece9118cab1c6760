#include "host/run.h"

#include "host/console.h"
#include "host/contact_sheet.h"
#include "host/file_list.h"
#include "host/output_check.h"
#include "host/platform.h"
#include "host/progress.h"
#include "host/request.h"

#include <QFile>
#include <QFileInfo>

namespace zr
{
namespace
{

constexpr int kAllSucceeded = 0;
constexpr int kSomeFailed = 1;
constexpr int kWrongUsage = 2;

// False, with a line on stderr, when the picture cannot be written.
bool savePicture(const QImage& picture, const QString& path)
{
    if (picture.save(path, "PNG"))
        return true;
    printLine(stderr, QStringLiteral("zrthumb: %1: cannot be written").arg(path));
    return false;
}

QImage fitted(const QImage& picture, int sizePx)
{
    return sizePx > 0 ? picture.scaled(sizePx, sizePx, Qt::KeepAspectRatio, Qt::SmoothTransformation) : picture;
}

} // namespace

int makeThumbnails(const Options& options)
{
    const auto files = listFiles(options.files, options.recursive);
    const QString fault = outputFault(options, files);
    if (!fault.isEmpty()) {
        printLine(stderr, QStringLiteral("zrthumb: %1\nTry 'zrthumb --help'.").arg(fault));
        return kWrongUsage;
    }
    const Progress progress(static_cast<int>(files.size()), options.quiet);
    ContactSheet sheet;
    int failures = 0;
    bool outputsWritten = true;
    int done = 0;
    for (const ListedFile& file : files) {
        const QString name = QFileInfo(file.path).fileName();
        progress.show(done++, printable(name), failures);
        const RequestResult result = requestThumbnail(file.path, options.server);
        progress.clear();
        if (!result.succeeded()) {
            ++failures;
            printLine(stderr,
                      QStringLiteral("zrthumb: %1: no thumbnail: %2").arg(printable(file.shown), result.reason));
            continue;
        }
        if (!options.quiet)
            printLine(stdout, result.pngPath);
        if (!options.output.isEmpty())
            outputsWritten &= savePicture(fitted(result.picture, options.sizePx), options.output);
        if (!options.sheet.isEmpty())
            sheet.add(result.picture, name);
    }
    if (!sheet.isEmpty()) {
        prepareDrawing();
        outputsWritten &= savePicture(sheet.draw(), options.sheet);
    }
    return failures == 0 && outputsWritten ? kAllSucceeded : kSomeFailed;
}

} // namespace zr
