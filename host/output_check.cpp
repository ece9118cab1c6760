// SPDX-License-Identifier: MIT
#include "host/output_check.h"

#include "core/printable.h"
#include "host/contact_sheet.h"
#include "host/output_file.h"
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

QString faultOf(const QString& option, const QString& output, const std::vector<ListedFile>& files)
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
    const auto isOutput = [&output](const ListedFile& file) { return isSameFile(output, file.path); };
    if (target.exists() && std::any_of(files.cbegin(), files.cend(), isOutput))
        return QStringLiteral("%1 %2: this is one of the files to make thumbnails of").arg(option, name);
    return {};
}

} // namespace

QString outputFault(const Options& options, const std::vector<ListedFile>& files)
{
    const int count = options.sheet.isEmpty() ? 0 : static_cast<int>(files.size());
    const QStringList sheets = sheetFiles(options.sheet, count);
    QString fault = faultOf(QStringLiteral("--output"), options.output, files);
    for (const QString& sheet : sheets) {
        if (fault.isEmpty())
            fault = faultOf(QStringLiteral("--sheet"), sheet, files);
    }
    if (!fault.isEmpty())
        return fault;
    if (options.sheet == QLatin1String(kStdoutName) && sheets.size() > 1)
        return QStringLiteral("--sheet -: so many files need several sheets; name a PNG");
    const auto isOutput = [&options](const QString& sheet) {
        return QFileInfo(options.output).absoluteFilePath() == QFileInfo(sheet).absoluteFilePath();
    };
    if (!options.output.isEmpty() && std::any_of(sheets.cbegin(), sheets.cend(), isOutput))
        return QStringLiteral("--output and --sheet name the same file");
    return {};
}

} // namespace zr
