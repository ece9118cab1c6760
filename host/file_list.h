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
    QString shown;         ///< as the user named it
    QString path;          ///< absolute, with the separators of the system
    QString below;         ///< its place below the folder of an output for each file, with "/"
    bool isShared = false; ///< whether another file of the list has the same name, and so the same PNG in the cache
};

/// Something that had to be left out of a list.
struct ListFault {
    QString shown;  ///< as the user named it
    QString reason; ///< one line for the user
};

/// The files of one run. Takes some 50 bytes for each, since a library has a million: paths are kept as a folder, which
/// most files share with the one before, and a name.
class FileList
{
public:
    std::size_t size() const { return m_files.size(); }
    ListedFile at(std::size_t index) const;

    /// Equal for files whose PNG in the cache is the same, and hardly ever for others.
    uint nameHash(std::size_t index) const;

    /// Adds the file `shown`, whose place below an output's folder is `below`.
    void add(const QString& shown, const QString& below);

    /// Finds out which files share their names. To be called when all are added.
    void markShared();

    std::vector<ListFault> faults; ///< folders and names that had to be left out
    QStringList notes;             ///< a line for the user for each folder with nothing to make a thumbnail of

private:
    struct Folder {
        QString shown;
        QString path;
        QString below;
    };
    struct File {
        quint32 folder;
        quint32 nameStart;
    };

    QString name(std::size_t index) const;

    std::vector<Folder> m_folders;
    std::vector<File> m_files;
    QString m_names;
    std::vector<uint> m_sharedNames; ///< hashes, sorted
};

/// The files that the command line names, in its order. With `recursive`, a folder means the files of every supported
/// format below it, sorted by path; links to folders are not followed, hidden files and folders are skipped. `onFound`
/// is called now and then with the number of files found so far.
FileList listFiles(const QStringList& files, bool recursive,
                   const std::function<void(std::size_t count)>& onFound = nullptr);

/// The same for the names in the file `listFile`, or stdin, which end with `separator`. Each file keeps the folders of
/// its name in its place below an output's folder. `fault` gets why the names cannot be read, one line for the user.
FileList listNamedFiles(const QString& listFile, char separator, bool recursive, QString& fault,
                        const std::function<void(std::size_t count)>& onFound = nullptr);

} // namespace zr
