// SPDX-License-Identifier: MIT
#include "desktop/source_file.h"

#include "desktop/messages.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace zr::desktop
{
namespace
{

QByteArray openFault(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return "no such file";
    case EACCES:
        return "the file cannot be opened: permission denied";
    default:
        return "the file cannot be opened: " + systemsWords(error);
    }
}

bool isThisMachine(const QByteArray& host)
{
    std::array<char, 256> name{};
    return host.isEmpty() || host.toLower() == "localhost" ||
           (gethostname(name.data(), name.size() - 1) == 0 && host == name.data());
}

} // namespace

QByteArray localPath(const QByteArray& input)
{
    constexpr char scheme[] = "file:/";
    if (!input.left(sizeof(scheme) - 1).toLower().startsWith(scheme))
        return input;
    QByteArray path = input.mid(sizeof(scheme) - 2);
    if (path.startsWith("//")) {
        const int end = path.indexOf('/', 2);
        if (end < 0 || !isThisMachine(path.mid(2, end - 2)))
            return {};
        path.remove(0, end);
    }
    return QByteArray::fromPercentEncoding(path);
}

QByteArray SourceFile::open(const QByteArray& input)
{
    m_path = localPath(input);
    if (m_path.isEmpty())
        return "this is a file of another machine";
    if (m_path.contains('\0'))
        return openFault(ENOENT);
    // Does not wait for a pipe's other end.
    m_descriptor = Descriptor(::open(m_path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!m_descriptor.isOpen() || fstat(m_descriptor.number(), &m_status) != 0)
        return openFault(errno);
    if (S_ISDIR(m_status.st_mode))
        return "this is a folder";
    if (!S_ISREG(m_status.st_mode))
        return "this is not a regular file";
    return {};
}

QString SourceFile::suffix() const
{
    const QByteArray name = m_path.mid(m_path.lastIndexOf('/') + 1);
    const int point = name.lastIndexOf('.');
    return point < 0 ? QString() : QString::fromLatin1(name.mid(point + 1));
}

} // namespace zr::desktop
