#include "host/run.h"

#include "cache/shared_pictures.h"
#include "host/console.h"
#include "host/contact_sheet.h"
#include "host/file_list.h"
#include "host/output_check.h"
#include "host/output_file.h"
#include "host/platform.h"
#include "host/progress.h"
#include "host/request.h"
#include "host/visibility.h"

#include <QFileInfo>

#include <optional>

namespace zr
{
namespace
{

constexpr int kAllSucceeded = 0;
constexpr int kSomeFailed = 1;
constexpr int kWrongUsage = 2;

void printError(const QString& text)
{
    printLine(stderr, QStringLiteral("zrthumb: ") + text);
}

QImage fitted(const QImage& picture, int sizePx)
{
    return sizePx > 0 ? picture.scaled(sizePx, sizePx, Qt::KeepAspectRatio, Qt::SmoothTransformation) : picture;
}

// One run of the program over its files.
class Run
{
public:
    Run(const Options& options, const FileList& list)
        : m_options(options), m_list(list), m_progress(static_cast<int>(list.files.size()), options.quiet)
    {
        // Only for what leaves the cache: there, files of equal names share their PNG.
        if (!options.output.isEmpty() || !options.sheet.isEmpty())
            m_sharedPictures.emplace();
    }

    int make()
    {
        for (const QString& fault : m_list.faults)
            printError(fault);
        for (const QString& note : m_list.notes) {
            if (!m_options.quiet)
                printError(note);
        }
        for (const ListedFile& file : m_list.files)
            make(file);
        writeSheet();
        return m_failures == 0 && m_list.faults.isEmpty() && m_outputsWritten ? kAllSucceeded : kSomeFailed;
    }

private:
    void make(const ListedFile& file)
    {
        const QString name = QFileInfo(file.path).fileName();
        m_progress.show(m_done++, printable(name), m_failures);
        if (m_sharedPictures)
            m_sharedPictures->prepare(file.path);
        const RequestResult result = requestThumbnail(file.path, m_options.server);
        m_progress.clear();
        if (!result.succeeded()) {
            ++m_failures;
            printError(QStringLiteral("%1: no thumbnail: %2").arg(printable(file.shown), result.reason));
            return;
        }
        if (m_sharedPictures)
            m_sharedPictures->handedOut(file.path, result.pngPath);
        handOut(file, result);
        if (!m_options.sheet.isEmpty())
            m_sheet.add(result.picture, name);
    }

    void handOut(const ListedFile& file, const RequestResult& result)
    {
        const bool isPictureOnStdout =
            m_options.output == QLatin1String(kStdoutName) || m_options.sheet == QLatin1String(kStdoutName);
        if (!m_options.quiet && !isPictureOnStdout)
            printLine(stdout, result.pngPath);
        if (!m_options.quiet && isInvisible(result.picture))
            printError(printable(file.shown) + QLatin1String(": ") + invisibilityReason(file.path));
        if (!m_options.output.isEmpty())
            write(fitted(result.picture, m_options.sizePx), m_options.output);
    }

    void writeSheet()
    {
        if (m_sheet.isEmpty())
            return;
        prepareDrawing();
        write(m_sheet.draw(), m_options.sheet);
    }

    void write(const QImage& picture, const QString& path)
    {
        const QString reason = writeOutput(picture, path);
        if (reason.isEmpty())
            return;
        m_outputsWritten = false;
        printError(QStringLiteral("%1: cannot be written: %2").arg(printable(path), reason));
    }

    const Options& m_options;
    const FileList& m_list;
    const Progress m_progress;
    std::optional<SharedPictures> m_sharedPictures;
    ContactSheet m_sheet;
    int m_done = 0;
    int m_failures = 0;
    bool m_outputsWritten = true;
};

} // namespace

int makeThumbnails(const Options& options)
{
    const FileList list = listFiles(options.files, options.recursive);
    const QString fault = outputFault(options, list.files);
    if (!fault.isEmpty()) {
        printError(fault + QLatin1String("\nTry 'zrthumb --help'."));
        return kWrongUsage;
    }
    return Run(options, list).make();
}

} // namespace zr
