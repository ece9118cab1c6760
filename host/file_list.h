#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace zr
{

/// A file to make a thumbnail of.
struct ListedFile {
    QString shown; ///< as the user named it
    QString path;  ///< absolute
};

/// The files that the command line names, in its order. With `recursive`, a folder stands for the files of every
/// supported format below it, sorted by path; links to folders are not followed.
std::vector<ListedFile> listFiles(const QStringList& files, bool recursive);

} // namespace zr
