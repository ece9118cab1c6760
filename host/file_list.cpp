// SPDX-License-Identifier: MIT
#include "host/file_list.h"

#include "core/printable.h"
#include "host/folder_entries.h"
#include "host/name_list.h"
#include "readers/reader_table.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace zr
{
namespace
{

// Lists the supported files below folders.
class TreeWalk
{
public:
    TreeWalk(FileList& list, const std::function<void(std::size_t)>& onFound) : m_list(list), m_onFound(onFound) {}

    /// `below` is the folder's place below an output's.
    void addFilesBelow(const QString& folder, const QString& below)
    {
        const auto filesBefore = m_list.size();
        const auto faultsBefore = m_list.faults.size();
        enter(folder, below);
        while (!m_levels.empty())
            goOn();
        if (m_list.size() == filesBefore && m_list.faults.size() == faultsBefore)
            m_list.notes += QStringLiteral("%1: no files here that thumbnails can be made of").arg(printable(folder));
    }

private:
    /// A folder that is being gone through.
    struct Level {
        QString prefix; ///< of the paths of its entries
        QString below;  ///< the same of their places below an output's folder
        std::vector<FolderEntry> entries;
        std::size_t next = 0;
    };

    void enter(const QString& folder, const QString& below)
    {
        Level level;
        const QString fault = readFolder(folder, level.entries);
        if (!fault.isEmpty())
            m_list.faults.push_back({folder, QStringLiteral("cannot be listed: %1").arg(fault)});
        level.prefix = folder.endsWith(QDir::separator()) ? folder : folder + QDir::separator();
        level.below = below;
        sortByPath(level.entries);
        m_waiting += filesOf(level);
        m_levels.push_back(std::move(level));
        if (m_onFound)
            m_onFound(m_list.size() + m_waiting);
    }

    // Each folder's files come where the folder's name with a separator belongs: as if all paths were sorted.
    static void sortByPath(std::vector<FolderEntry>& entries)
    {
        for (FolderEntry& entry : entries)
            entry.name += entry.isFolder ? QString(QDir::separator()) : QString();
        std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    }

    std::size_t filesOf(const Level& level) const
    {
        const auto isFile = [this](const FolderEntry& entry) { return !entry.isFolder && isSupported(entry.name); };
        return static_cast<std::size_t>(std::count_if(level.entries.begin(), level.entries.end(), isFile));
    }

    void goOn()
    {
        Level& level = m_levels.back();
        if (level.next == level.entries.size()) {
            m_levels.pop_back();
            return;
        }
        const FolderEntry& entry = level.entries[level.next++];
        const QString path = level.prefix + entry.name;
        if (!entry.isFolder && !isSupported(entry.name))
            return;
        m_waiting -= entry.isFolder ? 0 : 1;
        if (!entry.isText)
            m_list.faults.push_back({path, QStringLiteral("left out: its name is not text in the encoding of this "
                                                          "system; rename it")});
        else if (entry.isFolder)
            enter(path.chopped(1), level.below + entry.name.chopped(1) + QLatin1Char('/'));
        else
            m_list.add(path, level.below + entry.name);
    }

    bool isSupported(const QString& name) const
    {
        return m_suffixes.contains(QFileInfo(name).suffix(), Qt::CaseInsensitive);
    }

    FileList& m_list;
    const std::function<void(std::size_t)>& m_onFound;
    const QStringList m_suffixes = supportedSuffixes();
    std::vector<Level> m_levels; ///< from the top to the present folder
    std::size_t m_waiting = 0;   ///< files of these that are not in the list yet
};

// The folder part of a path, with its last separator.
int folderLength(const QString& path)
{
    const auto isSeparator = [](QChar letter) { return letter == QLatin1Char('/') || letter == QDir::separator(); };
    return static_cast<int>(std::find_if(path.crbegin(), path.crend(), isSeparator).base() - path.cbegin());
}

// The place of a listed name below an output's folder: the name without what leads out of that folder.
QString placeOf(const QString& name)
{
    QStringList parts = QDir::cleanPath(QDir::fromNativeSeparators(name)).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    parts.removeAll(QStringLiteral(".."));
    parts.removeAll(QStringLiteral("."));
    // A drive.
    if (!parts.isEmpty() && QDir::separator() != QLatin1Char('/'))
        parts.first().remove(QLatin1Char(':'));
    return parts.join(QLatin1Char('/'));
}

QString asFolder(const QString& place)
{
    return place.isEmpty() ? place : place + QLatin1Char('/');
}

} // namespace

ListedFile FileList::at(std::size_t index) const
{
    const Folder& folder = m_folders[m_files[index].folder];
    const QString own = name(index);
    return {folder.shown + own, folder.path + own, folder.below + own,
            std::binary_search(m_sharedNames.begin(), m_sharedNames.end(), nameHash(index))};
}

QString FileList::name(std::size_t index) const
{
    const auto start = static_cast<int>(m_files[index].nameStart);
    const bool isLast = index + 1 == m_files.size();
    const int end = isLast ? m_names.size() : static_cast<int>(m_files[index + 1].nameStart);
    return m_names.mid(start, end - start);
}

uint FileList::nameHash(std::size_t index) const
{
    // Case-folded, since some file systems ignore case.
    const QString path = m_folders[m_files[index].folder].path + name(index);
    return qHash(QFileInfo(path).fileName().toCaseFolded());
}

void FileList::add(const QString& shown, const QString& below)
{
    const QString path = QDir::toNativeSeparators(QFileInfo(shown).absoluteFilePath());
    const QString own = shown.mid(folderLength(shown));
    // A name such as ".." is not the end of its absolute path.
    const bool isSplit = path.endsWith(own) && below.endsWith(own);
    const auto folderOf = [&](const QString& whole) { return isSplit ? whole.chopped(own.size()) : whole; };
    const Folder folder{folderOf(shown), folderOf(path), folderOf(below)};
    const bool isLast = !m_folders.empty() && m_folders.back().shown == folder.shown &&
                        m_folders.back().path == folder.path && m_folders.back().below == folder.below;
    if (!isLast)
        m_folders.push_back(folder);
    m_files.push_back({static_cast<quint32>(m_folders.size() - 1), static_cast<quint32>(m_names.size())});
    if (isSplit)
        m_names += own;
}

void FileList::markShared()
{
    std::vector<uint> hashes(size());
    for (std::size_t i = 0; i < size(); ++i)
        hashes[i] = nameHash(i);
    std::sort(hashes.begin(), hashes.end());
    for (std::size_t i = 1; i < hashes.size(); ++i) {
        if (hashes[i] == hashes[i - 1] && (m_sharedNames.empty() || m_sharedNames.back() != hashes[i]))
            m_sharedNames.push_back(hashes[i]);
    }
}

FileList listFiles(const QStringList& files, bool recursive, const std::function<void(std::size_t)>& onFound)
{
    FileList list;
    TreeWalk walk(list, onFound);
    for (const QString& file : files) {
        if (recursive && QFileInfo(file).isDir())
            walk.addFilesBelow(QDir::toNativeSeparators(file), QString());
        else
            list.add(file, file.mid(folderLength(file)));
    }
    list.markShared();
    return list;
}

FileList listNamedFiles(const QString& listFile, char separator, bool recursive, QString& fault,
                        const std::function<void(std::size_t)>& onFound)
{
    FileList list;
    TreeWalk walk(list, onFound);
    fault = readNames(listFile, separator, [&](const QString& name) {
        if (recursive && QFileInfo(name).isDir())
            walk.addFilesBelow(QDir::toNativeSeparators(name), asFolder(placeOf(name)));
        else
            list.add(name, placeOf(name));
    });
    list.markShared();
    return list;
}

} // namespace zr
