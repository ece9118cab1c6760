// SPDX-License-Identifier: MIT
#include "host/report.h"

#include "core/printable.h"
#include "host/failure_keys.h"
#include "host/json_line.h"
#include "host/output_file.h"

namespace zr
{
namespace
{

QStringList pathsOf(const FileList& files)
{
    QStringList paths;
    for (std::size_t i = 0; i < files.size(); ++i)
        paths.append(files.at(i).path);
    return paths;
}

QString writeFailure(const QString& output, const QString& reason)
{
    return QStringLiteral("%1: cannot be written: %2").arg(printable(output), reason);
}

} // namespace

Report::Report(const Options& options, const FileList& list, Progress& progress)
    : m_options(options), m_list(list), m_progress(progress)
{
    if (!options.sheet.isEmpty())
        m_sheet.emplace(options.sheet, pathsOf(list),
                        [this](const QImage& page, const QString& file) { savePage(page, file); });
    tellWhatIsNotListed();
}

void Report::printError(const QString& text)
{
    m_progress.print(stderr, QStringLiteral("zrthumb: ") + text + QLatin1Char('\n'));
}

void Report::printName(const QString& name)
{
    m_progress.print(stdout, name + QLatin1Char(m_options.endsWithZero ? '\0' : '\n'));
}

void Report::tellWhatIsNotListed()
{
    for (const ListFault& fault : m_list.faults) {
        if (m_options.json)
            m_progress.print(stdout, failureLine(fault.shown, {key::kNotListed, fault.reason}));
        else
            printError(printable(fault.shown) + QLatin1String(": ") + fault.reason);
    }
    for (const QString& note : m_list.notes) {
        if (!m_options.quiet)
            printError(note);
    }
}

void Report::add(const ListedFile& file, const FileResult& result)
{
    ++m_done;
    m_failures += result.hasThumbnail() ? 0 : 1;
    m_isAllWritten = m_isAllWritten && result.writeFault.isEmpty();
    if (m_options.json)
        tellAsJson(file, result);
    else
        tell(file, result);
    if (m_sheet && result.hasThumbnail())
        m_sheet->addPicture(result.cell);
    else if (m_sheet)
        m_sheet->addFailure(result.failure.reason);
}

void Report::tell(const ListedFile& file, const FileResult& result)
{
    if (!result.hasThumbnail()) {
        printError(QStringLiteral("%1: no thumbnail: %2").arg(printable(file.shown), result.failure.reason));
        return;
    }
    const bool isOutput = !m_options.outputFolder.isEmpty();
    const bool hasPicture = !result.picture.isEmpty() && (!isOutput || result.writeFault.isEmpty());
    if (!m_options.quiet && !m_options.writesPictureToStdout() && hasPicture)
        printName(result.picture);
    if (!m_options.quiet && !result.note.isEmpty())
        printError(printable(file.shown) + QLatin1String(": ") + result.note);
    if (!result.writeFault.isEmpty())
        printError(writeFailure(isOutput ? result.picture : m_options.output, result.writeFault));
}

void Report::tellAsJson(const ListedFile& file, const FileResult& result)
{
    if (!result.hasThumbnail())
        m_progress.print(stdout, failureLine(file.shown, result.failure));
    else if (!result.writeFault.isEmpty())
        m_progress.print(stdout,
                         failureLine(file.shown, {key::kNotWritten, writeFailure(result.picture, result.writeFault)}));
    else if (!m_options.quiet)
        m_progress.print(stdout, resultLine(file.shown, result));
}

void Report::savePage(const QImage& page, const QString& file)
{
    const QString reason = writeOutput(page, file);
    if (reason.isEmpty())
        return;
    m_isAllWritten = false;
    printError(writeFailure(file, reason));
}

void Report::end()
{
    if (m_sheet)
        m_sheet->finish();
}

} // namespace zr
