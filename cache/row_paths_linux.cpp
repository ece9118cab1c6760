// SPDX-License-Identifier: MIT
#include "cache/row_paths.h"

#include <QFile>

#include <cerrno>

#include <sys/stat.h>

namespace zr
{
namespace
{

bool isMissing(const QByteArray& name)
{
    struct stat status = {};
    return stat(name.constData(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

} // namespace

// The row may be of a process with another locale, in which the same name has other bytes.
bool isGone(const QString& path)
{
    const QByteArray utf8 = path.toUtf8();
    // No file of such a name can be looked up.
    if (path.contains(QChar(QChar::Null)) || QString::fromUtf8(utf8) != path)
        return false;
    return isMissing(QFile::encodeName(path)) && isMissing(utf8);
}

QString comparableName(const QString& name)
{
    return name;
}

} // namespace zr
