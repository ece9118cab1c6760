// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <vector>

namespace zr
{

/// A file or folder in a folder.
struct FolderEntry {
    QString name;
    bool isFolder = false; ///< and not a link to one
    bool isText = true;    ///< false when the name is not valid text; then `name` does not lead to it
};

/// What is in the folder, unsorted: folders, files and links to files, without hidden ones. Returns why not all of it
/// could be listed, in the system's words; empty when it was.
QString readFolder(const QString& path, std::vector<FolderEntry>& entries);

} // namespace zr
