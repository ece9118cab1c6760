#include "host/file_list.h"

#include "core/reader_table.h"

#include <QDirIterator>
#include <QFileInfo>

namespace zr
{
namespace
{

QStringList supportedFilesBelow(const QString& folder)
{
    const QStringList suffixes = supportedSuffixes();
    QStringList found;
    QDirIterator walk(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        walk.next();
        if (suffixes.contains(walk.fileInfo().suffix(), Qt::CaseInsensitive))
            found.append(walk.filePath());
    }
    found.sort();
    return found;
}

} // namespace

std::vector<ListedFile> listFiles(const QStringList& files, bool recursive)
{
    QStringList shown;
    for (const QString& file : files) {
        if (recursive && QFileInfo(file).isDir())
            shown.append(supportedFilesBelow(file));
        else
            shown.append(file);
    }
    std::vector<ListedFile> listed;
    listed.reserve(static_cast<std::size_t>(shown.size()));
    for (const QString& file : qAsConst(shown))
        listed.push_back({file, QFileInfo(file).absoluteFilePath()});
    return listed;
}

} // namespace zr
