#include "host/output_check.h"

#include "core/reader_table.h"
#include "host/console.h"

#include <QFileInfo>

#include <algorithm>
#include <filesystem>

namespace zr
{
namespace
{

// By the identity of the file, so that links and other spellings of its name count, too.
bool isSameFile(const QString& path, const QString& other)
{
    try {
        std::error_code error;
        return std::filesystem::equivalent(path.toStdU16String(), other.toStdU16String(), error);
    } catch (const std::filesystem::filesystem_error&) {
        // A name that is no text. Hard links of it are not recognised.
        return QFileInfo(path).canonicalFilePath() == QFileInfo(other).canonicalFilePath();
    }
}

QString faultOf(const QString& option, const QString& output, const std::vector<ListedFile>& files)
{
    if (output.isEmpty())
        return {};
    const QString name = printable(output);
    if (supportedSuffixes().contains(QFileInfo(output).suffix(), Qt::CaseInsensitive))
        return QStringLiteral("%1 %2: a picture is not written to a file of this kind; name a PNG").arg(option, name);
    const auto isOutput = [&output](const ListedFile& file) { return isSameFile(output, file.path); };
    if (QFileInfo::exists(output) && std::any_of(files.cbegin(), files.cend(), isOutput))
        return QStringLiteral("%1 %2: this is one of the files to make thumbnails of").arg(option, name);
    return {};
}

} // namespace

QString outputFault(const Options& options, const std::vector<ListedFile>& files)
{
    for (const auto& [option, output] : {std::make_pair(QStringLiteral("--output"), options.output),
                                         std::make_pair(QStringLiteral("--sheet"), options.sheet)}) {
        const QString fault = faultOf(option, output, files);
        if (!fault.isEmpty())
            return fault;
    }
    const bool areBothGiven = !options.output.isEmpty() && !options.sheet.isEmpty();
    if (areBothGiven && QFileInfo(options.output).absoluteFilePath() == QFileInfo(options.sheet).absoluteFilePath())
        return QStringLiteral("--output and --sheet name the same file");
    return {};
}

} // namespace zr
