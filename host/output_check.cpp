// SPDX-License-Identifier: MIT
#include "host/output_check.h"

#include "core/printable.h"
#include "host/contact_sheet.h"
#include "host/output_file.h"
#include "host/output_folder.h"
#include "host/platform.h"
#include "readers/reader_table.h"

#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace zr
{
namespace
{

// Compares the files' identities, so that links and other spellings of the name count, too.
bool isSameFile(const QString& path, const QString& other)
{
    try {
        std::error_code error;
        return std::filesystem::equivalent(path.toStdU16String(), other.toStdU16String(), error);
    } catch (const std::filesystem::filesystem_error&) {
        // A name that is not valid text. Hard links of it are not recognised.
        return QFileInfo(path).canonicalFilePath() == QFileInfo(other).canonicalFilePath();
    }
}

bool isOneOf(const FileList& files, const QString& path)
{
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (isSameFile(path, files.at(i).path))
            return true;
    }
    return false;
}

// Names that promise another kind of picture than a PNG.
bool namesOtherFormat(const QString& output)
{
    constexpr const char* kFormats[] = {"avif", "bmp", "gif", "heic", "ico", "jfif", "jpe",  "jpeg",
                                        "jpg",  "pdf", "ppm", "svg",  "tga", "tif",  "tiff", "webp"};
    const QString suffix = QFileInfo(output).suffix();
    return std::any_of(std::begin(kFormats), std::end(kFormats), [&suffix](const char* format) {
        return suffix.compare(QLatin1String(format), Qt::CaseInsensitive) == 0;
    });
}

QString faultOfStdout(const QString& option)
{
    if (stdoutIsTerminal())
        return QStringLiteral("%1 -: a picture is nothing for a terminal; lead it to a file or another program")
            .arg(option);
    return {};
}

QString faultOf(const QString& option, const QString& output, const FileList& files)
{
    if (output.isEmpty())
        return {};
    if (output == QLatin1String(kStdoutName))
        return faultOfStdout(option);
    const QString name = printable(output);
    if (output.startsWith(QLatin1Char('-')))
        return QStringLiteral("%1 %2: the name of the PNG is missing (or is ./%2)").arg(option, name);
    const QFileInfo target(output);
    if (target.isDir())
        return QStringLiteral("%1 %2: this is a folder; name a PNG").arg(option, name);
    if (!QFileInfo(target.absolutePath()).isDir())
        return QStringLiteral("%1 %2: there is no folder of that name to write it to").arg(option, name);
    if (namesOtherFormat(output))
        return QStringLiteral("%1 %2: pictures are written as PNG; name a file that ends with .png").arg(option, name);
    if (supportedSuffixes().contains(target.suffix(), Qt::CaseInsensitive))
        return QStringLiteral("%1 %2: a picture is not written to a file of this kind; name a PNG").arg(option, name);
    if (target.exists() && isOneOf(files, output))
        return QStringLiteral("%1 %2: this is one of the files to make thumbnails of").arg(option, name);
    return {};
}

// What is wrong with the sheet, apart from other outputs.
QString sheetFault(const QStringList& sheets, const FileList& files)
{
    for (const QString& sheet : sheets) {
        const QString fault = faultOf(QStringLiteral("--sheet"), sheet, files);
        if (!fault.isEmpty())
            return fault;
    }
    if (sheets.size() > 1 && sheets.first() == QLatin1String(kStdoutName))
        return QStringLiteral("--sheet -: so many files need several sheets; name a PNG");
    return {};
}

bool isOutputOf(const Options& options, const FileList& files, const QString& sheet)
{
    const QString path = QFileInfo(sheet).absoluteFilePath();
    if (!options.output.isEmpty())
        return QFileInfo(options.output).absoluteFilePath() == path;
    if (options.outputFolder.isEmpty())
        return false;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (QFileInfo(outputIn(options.outputFolder, files.at(i))).absoluteFilePath() == path)
            return true;
    }
    return false;
}

} // namespace

QString outputFault(const Options& options, const FileList& files)
{
    const int count = options.sheet.isEmpty() ? 0 : static_cast<int>(files.size());
    const QStringList sheets = sheetFiles(options.sheet, count);
    QString fault = faultOf(QStringLiteral("--output"), options.output, files);
    if (fault.isEmpty())
        fault = outputFolderFault(options.outputFolder, files);
    if (fault.isEmpty())
        fault = sheetFault(sheets, files);
    const auto isOutput = [&](const QString& sheet) { return isOutputOf(options, files, sheet); };
    if (fault.isEmpty() && std::any_of(sheets.cbegin(), sheets.cend(), isOutput))
        return options.output.isEmpty() ? QStringLiteral("--output-dir and --sheet name the same file")
                                        : QStringLiteral("--output and --sheet name the same file");
    return fault;
}

} // namespace zr
