// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace zr
{

/// A file to make a thumbnail of.
struct ListedFile {
    QString shown; ///< as the user named it
    QString path;  ///< absolute, with the separators of the system
};

/// The result of listFiles().
struct FileList {
    std::vector<ListedFile> files;
    QStringList faults; ///< a line for the user for each folder or name that had to be left out
    QStringList notes;  ///< a line for the user for each folder with nothing to make a thumbnail of
};

/// The files that the command line names, in its order. With `recursive`, a folder means the files of every supported
/// format below it, sorted by path; links to folders are not followed, hidden files and folders are skipped. `onFound`
/// is called now and then with the number of files found so far.
FileList listFiles(const QStringList& files, bool recursive,
                   const std::function<void(std::size_t count)>& onFound = nullptr);

} // namespace zr
