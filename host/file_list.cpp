// SPDX-License-Identifier: MIT
#include "host/file_list.h"

#include "core/printable.h"
#include "host/folder_entries.h"
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

    QStringList filesBelow(const QString& folder)
    {
        const auto faultsBefore = m_list.faults.size();
        m_found.clear();
        m_folders = QStringList(folder);
        while (!m_folders.isEmpty())
            visit(m_folders.takeLast());
        m_found.sort();
        if (m_found.isEmpty() && m_list.faults.size() == faultsBefore)
            m_list.notes += QStringLiteral("%1: no files here that thumbnails can be made of").arg(printable(folder));
        return m_found;
    }

private:
    void visit(const QString& folder)
    {
        m_entries.clear();
        const QString fault = readFolder(folder, m_entries);
        if (!fault.isEmpty())
            m_list.faults += QStringLiteral("%1: cannot be listed: %2").arg(printable(folder), fault);
        const QString prefix = folder.endsWith(QDir::separator()) ? folder : folder + QDir::separator();
        for (const FolderEntry& entry : m_entries)
            add(entry, prefix + entry.name);
        if (m_onFound)
            m_onFound(m_list.files.size() + static_cast<std::size_t>(m_found.size()));
    }

    void add(const FolderEntry& entry, const QString& path)
    {
        const bool isWanted =
            entry.isFolder || m_suffixes.contains(QFileInfo(entry.name).suffix(), Qt::CaseInsensitive);
        if (isWanted && !entry.isText)
            m_list.faults +=
                QStringLiteral("%1: left out: its name is not text in the encoding of this system; rename it")
                    .arg(printable(path));
        else if (isWanted)
            (entry.isFolder ? m_folders : m_found).append(path);
    }

    FileList& m_list;
    const std::function<void(std::size_t)>& m_onFound;
    const QStringList m_suffixes = supportedSuffixes();
    std::vector<FolderEntry> m_entries;
    QStringList m_folders; ///< to be visited
    QStringList m_found;
};

} // namespace

FileList listFiles(const QStringList& files, bool recursive, const std::function<void(std::size_t)>& onFound)
{
    FileList list;
    TreeWalk walk(list, onFound);
    const auto add = [&list](const QString& file) {
        list.files.push_back({file, QDir::toNativeSeparators(QFileInfo(file).absoluteFilePath())});
    };
    for (const QString& file : files) {
        if (!recursive || !QFileInfo(file).isDir()) {
            add(file);
            continue;
        }
        const QStringList found = walk.filesBelow(QDir::toNativeSeparators(file));
        std::for_each(found.cbegin(), found.cend(), add);
    }
    return list;
}

} // namespace zr
