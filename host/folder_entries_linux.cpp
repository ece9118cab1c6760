// SPDX-License-Identifier: MIT
#include "host/folder_entries.h"

#include <QFile>

#include <cerrno>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace zr
{
namespace
{

enum class Kind { Folder, File, Other };

Kind kindOf(const dirent& entry, int folder)
{
    if (entry.d_type == DT_DIR)
        return Kind::Folder;
    if (entry.d_type == DT_REG)
        return Kind::File;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return Kind::Other;
    struct stat status = {};
    if (entry.d_type == DT_UNKNOWN && fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        S_ISDIR(status.st_mode))
        return Kind::Folder;
    // A link counts as what it leads to, but folders are not entered twice. A dangling one is reported when it is read.
    return fstatat(folder, entry.d_name, &status, 0) != 0 || S_ISREG(status.st_mode) ? Kind::File : Kind::Other;
}

} // namespace

QString readFolder(const QString& path, std::vector<FolderEntry>& entries)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(QFile::encodeName(path).constData()), closedir);
    if (!folder)
        return qt_error_string(errno);
    errno = 0;
    while (const dirent* const entry = readdir(folder.get())) {
        const QByteArray bytes = entry->d_name;
        const Kind kind = bytes.startsWith('.') ? Kind::Other : kindOf(*entry, dirfd(folder.get()));
        if (kind != Kind::Other) {
            const QString name = QFile::decodeName(bytes);
            entries.push_back({name, kind == Kind::Folder, QFile::encodeName(name) == bytes});
        }
        errno = 0;
    }
    return errno == 0 ? QString() : qt_error_string(errno);
}

} // namespace zr
