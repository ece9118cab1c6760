// SPDX-License-Identifier: MIT
#include "host/run.h"

#include "cache/shared_pictures.h"
#include "core/printable.h"
#include "host/contact_sheet.h"
#include "host/file_list.h"
#include "host/interruption.h"
#include "host/output_check.h"
#include "host/output_file.h"
#include "host/progress.h"
#include "host/request.h"
#include "readers/visibility.h"

#include <QFileInfo>

#include <optional>

namespace zr
{
namespace
{

// Of faces in forms that only the standard reading of OBJ files understands.
constexpr char kFacesNotUnderstood[] = ", which are not understood";
constexpr char kFacesUnderstood[] = ": use '--obj standard' with -o or --sheet, which reads them";

constexpr int kAllSucceeded = 0;
constexpr int kSomeFailed = 1;
constexpr int kWrongUsage = 2;

QImage fitted(const QImage& picture, int sizePx)
{
    return sizePx > 0 ? picture.scaled(sizePx, sizePx, Qt::KeepAspectRatio, Qt::SmoothTransformation) : picture;
}

QStringList pathsOf(const std::vector<ListedFile>& files)
{
    QStringList paths;
    for (const ListedFile& file : files)
        paths.append(file.path);
    return paths;
}

// One run of the program over its files.
class Run
{
public:
    Run(const Options& options, const FileList& list, Progress& progress)
        : m_options(options), m_list(list), m_progress(progress)
    {
        // Only for output outside the cache, in which files of equal names share their PNG.
        if (options.dataFolderUse == DataFolderUse::Usual && (!options.output.isEmpty() || !options.sheet.isEmpty()))
            m_sharedPictures.emplace();
        if (!options.sheet.isEmpty()) {
            const auto savePage = [this](const QImage& page, const QString& file) { write(page, file); };
            m_sheet.emplace(options.sheet, pathsOf(list.files), savePage);
        }
    }

    int make()
    {
        tellWhatWasNotListed();
        const Interruption interruption;
        for (const ListedFile& file : m_list.files) {
            if (interruption.isRequested())
                break;
            m_progress.showFile(++m_done, QFileInfo(file.path).fileName(), m_failures);
            make(file);
        }
        if (m_sheet)
            m_sheet->finish();
        m_progress.end(m_done, m_failures);
        if (interruption.isRequested()) {
            printError(QStringLiteral("interrupted after %1 of %2 files").arg(m_done).arg(m_list.files.size()));
            return interruption.status();
        }
        return m_failures == 0 && m_list.faults.isEmpty() && m_outputsWritten ? kAllSucceeded : kSomeFailed;
    }

private:
    void printError(const QString& text) { m_progress.print(stderr, QStringLiteral("zrthumb: ") + text); }

    void tellWhatWasNotListed()
    {
        for (const QString& fault : m_list.faults)
            printError(fault);
        for (const QString& note : m_list.notes) {
            if (!m_options.quiet)
                printError(note);
        }
    }

    void make(const ListedFile& file)
    {
        if (m_sharedPictures)
            m_sharedPictures->prepare(file.path);
        const RequestResult result = requestThumbnail(file.path, m_options.server, m_options.dataFolderUse);
        if (!result.succeeded()) {
            ++m_failures;
            printError(QStringLiteral("%1: no thumbnail: %2").arg(printable(file.shown), result.reason));
            if (m_sheet)
                m_sheet->addFailure(result.reason);
            return;
        }
        if (m_sharedPictures)
            m_sharedPictures->handedOut(file.path, result.pngPath);
        handOut(file, result);
    }

    void handOut(const ListedFile& file, const RequestResult& result)
    {
        const bool isPictureOnStdout =
            m_options.output == QLatin1String(kStdoutName) || m_options.sheet == QLatin1String(kStdoutName);
        if (!m_options.quiet && !isPictureOnStdout && !result.pngPath.isEmpty())
            m_progress.print(stdout, result.pngPath);
        if (!m_options.quiet && isInvisible(result.picture))
            printError(printable(file.shown) + QLatin1String(": ") +
                       invisibilityReason(file.path, talksToServer() ? kFacesNotUnderstood : kFacesUnderstood));
        if (!m_options.output.isEmpty())
            write(fitted(result.picture, m_options.sizePx), m_options.output);
        if (m_sheet)
            m_sheet->addPicture(result.picture);
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
    Progress& m_progress;
    std::optional<SharedPictures> m_sharedPictures;
    std::optional<ContactSheet> m_sheet;
    int m_done = 0;
    int m_failures = 0;
    bool m_outputsWritten = true;
};

} // namespace

int makeThumbnails(const Options& options)
{
    readObjAs(options.objReading);
    Progress progress(options.quiet);
    const auto showFound = [&progress](std::size_t found) { progress.showListing(static_cast<int>(found)); };
    const FileList list = listFiles(options.files, options.recursive, showFound);
    progress.begin(static_cast<int>(list.files.size()));
    const QString fault = outputFault(options, list.files);
    if (!fault.isEmpty()) {
        progress.print(stderr, QStringLiteral("zrthumb: %1\nTry 'zrthumb --help'.").arg(fault));
        return kWrongUsage;
    }
    return Run(options, list, progress).make();
}

} // namespace zr
