// SPDX-License-Identifier: MIT
#include "host/output_folder.h"

#include "core/printable.h"
#include "host/platform.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QImageReader>

#include <algorithm>
#include <utility>
#include <vector>

namespace zr
{
namespace
{

QString asCompared(const QString& place)
{
    return caseOfNames() == Qt::CaseSensitive ? place : place.toCaseFolded();
}

// What is wrong with the folder itself.
QString folderFault(const QString& folder)
{
    if (folder.startsWith(QLatin1Char('-')))
        return QStringLiteral("the name of the folder is missing (or is ./%1)").arg(printable(folder));
    // A separator at the end would make it its own parent.
    const QFileInfo info(QDir::cleanPath(folder));
    if (info.exists() && !info.isDir())
        return QStringLiteral("this is not a folder");
    if (!info.exists() && !QFileInfo(info.absolutePath()).isDir())
        return QStringLiteral("there is no folder to make it in");
    return {};
}

// A file that the picture of another one would be written over.
std::optional<ListedFile> fileInTheWay(const QString& folder, const FileList& files)
{
    std::vector<uint> sources(files.size());
    for (std::size_t i = 0; i < files.size(); ++i)
        sources[i] = qHash(asCompared(files.at(i).path));
    std::sort(sources.begin(), sources.end());
    for (std::size_t i = 0; i < files.size(); ++i) {
        const QString output =
            asCompared(QDir::toNativeSeparators(QFileInfo(outputIn(folder, files.at(i))).absoluteFilePath()));
        if (!std::binary_search(sources.begin(), sources.end(), qHash(output)))
            continue;
        for (std::size_t j = 0; j < files.size(); ++j) {
            if (asCompared(files.at(j).path) == output)
                return files.at(j);
        }
    }
    return std::nullopt;
}

// Two different files whose pictures would be one.
std::optional<std::pair<ListedFile, ListedFile>> filesOfOneOutput(const FileList& files)
{
    using Place = std::pair<uint, std::size_t>; // hash and index
    std::vector<Place> places;
    places.reserve(files.size());
    for (std::size_t i = 0; i < files.size(); ++i)
        places.emplace_back(qHash(asCompared(files.at(i).below)), i);
    std::sort(places.begin(), places.end());
    for (std::size_t i = 1; i < places.size(); ++i) {
        if (places[i].first != places[i - 1].first)
            continue;
        const ListedFile one = files.at(places[i - 1].second);
        const ListedFile other = files.at(places[i].second);
        if (asCompared(one.below) == asCompared(other.below) && one.path != other.path)
            return std::pair(one, other);
    }
    return std::nullopt;
}

// Invalid for what is not a whole PNG: where files cannot be replaced, a run that was killed leaves a part of one.
QSize sizeOfWholePng(const QString& path)
{
    constexpr char kEnd[] = "IEND\xAE\x42\x60\x82";
    constexpr qint64 kEndBytes = sizeof kEnd - 1;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() < kEndBytes || !file.seek(file.size() - kEndBytes) ||
        file.read(kEndBytes) != kEnd || !file.seek(0))
        return {};
    QImageReader reader(&file, "png");
    return reader.canRead() ? reader.size() : QSize();
}

} // namespace

QString outputIn(const QString& folder, const ListedFile& file)
{
    const QString prefix = folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
    return QDir::toNativeSeparators(prefix + file.below + QLatin1String(".png"));
}

QString outputFolderFault(const QString& folder, const FileList& files)
{
    if (folder.isEmpty())
        return {};
    const QString option = QLatin1String("--output-dir ") + printable(folder) + QLatin1String(": ");
    const QString fault = folderFault(folder);
    if (!fault.isEmpty())
        return option + fault;
    if (const auto file = fileInTheWay(folder, files))
        return option + printable(file->shown) +
               QLatin1String(" is one of the files to make thumbnails of, and a picture "
                             "would be written over it");
    const auto pair = filesOfOneOutput(files);
    if (!pair)
        return {};
    return option + printable(pair->first.shown) + QLatin1String(" and ") + printable(pair->second.shown) +
           QLatin1String(" would both be written to ") + printable(outputIn(folder, pair->first)) +
           QLatin1String("; name the folder above both, with -r, or give each run a folder of its own");
}

std::optional<QSize> currentOutput(const QString& output, const QString& source)
{
    const QFileInfo picture(output);
    const QFileInfo model(source);
    if (!picture.isFile() || !model.isFile() || picture.lastModified() <= model.lastModified())
        return std::nullopt;
    const QSize size = sizeOfWholePng(output);
    return size.isValid() ? std::optional(size) : std::nullopt;
}

} // namespace zr
