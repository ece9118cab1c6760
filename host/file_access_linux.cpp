// SPDX-License-Identifier: MIT
#include "host/file_access.h"

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zr
{
namespace
{

// Bytes of a name that are not valid text are lost when the name becomes a QString.
QString missingFault(const QString& path)
{
    constexpr int kUtf8 = 106; // as IANA numbers it
    if (!path.contains(QChar(QChar::ReplacementCharacter)))
        return QLatin1String(reason::kNoSuchFile);
    if (QTextCodec::codecForLocale()->mibEnum() == kUtf8)
        return QStringLiteral("its name is not text (UTF-8): rename it");
    return QStringLiteral("its name is not text in this locale: rename it, or use a UTF-8 locale");
}

// What the system says about a path that leads to no file.
QString lookupFault(const QString& path, int error)
{
    struct stat link = {};
    if (error == ENOENT && lstat(QFile::encodeName(path).constData(), &link) == 0)
        return QLatin1String(reason::kLooseLink);
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return missingFault(path);
    case EACCES:
        return QStringLiteral("the file cannot be opened: permission denied, a folder above it may not be searched");
    case ELOOP:
        return QStringLiteral("it is a link that leads back to itself");
    case ENAMETOOLONG:
        return QStringLiteral("no such file: its name is too long for any");
    default:
        return QStringLiteral("the file cannot be opened: ") + qt_error_string(error);
    }
}

// Why the regular file cannot be opened. Does not block even if it has become a pipe meanwhile.
QString openFault(const QByteArray& name)
{
    const int file = open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file != -1) {
        close(file);
        return QString();
    }
    if (errno == EACCES)
        return QLatin1String(reason::kNotPermitted);
    return QStringLiteral("the file cannot be opened: ") + qt_error_string(errno);
}

} // namespace

QString sourceFault(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    if (path.contains(QChar(QChar::Null)))
        return QLatin1String(reason::kNoSuchFile);
    if (stat(name.constData(), &status) != 0)
        return lookupFault(path, errno);
    if (S_ISDIR(status.st_mode))
        return QLatin1String(reason::kIsFolder);
    if (!S_ISREG(status.st_mode))
        return QLatin1String(reason::kNotRegular);
    return openFault(name);
}

QString writeFault(const QString& path)
{
    const int mode = QFileInfo(path).isDir() ? W_OK | X_OK : W_OK;
    if (faccessat(AT_FDCWD, QFile::encodeName(path).constData(), mode, AT_EACCESS) == 0)
        return QString();
    return errno == EACCES ? QLatin1String(reason::kWriteNotPermitted) : qt_error_string(errno);
}

bool takesName(const QString& folder, const QString& name)
{
    const QByteArray bytes = QFile::encodeName(folder);
    const auto fits = [&bytes](int limit, int size) {
        const long maxSize = pathconf(bytes.constData(), limit);
        return maxSize == -1 || size <= maxSize;
    };
    const int nameBytes = QFile::encodeName(name).size();
    return fits(_PC_NAME_MAX, nameBytes) && fits(_PC_PATH_MAX, bytes.size() + nameBytes + 1);
}

} // namespace zr
