#pragma once

#include <QString>

#include <vector>

namespace zr
{

/// A file or folder of a folder.
struct FolderEntry {
    QString name;
    bool isFolder = false; ///< and no link to one
    bool isText = true;    ///< false when the name has bytes that mean nothing; `name` does not lead to it then
};

/// What is in the folder, in no order: folders, and whatever files and links to files there are. Hidden ones are left
/// out. Returns why not all of it could be listed, in the system's words; empty when it was.
QString readFolder(const QString& path, std::vector<FolderEntry>& entries);

} // namespace zr
