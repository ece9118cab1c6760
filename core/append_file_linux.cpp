// SPDX-License-Identifier: MIT
#include "core/append_file.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zr
{
namespace
{

constexpr mode_t kEverybodyMayReadAndWrite = 0666; // less what the user's umask takes away

// When a pipe's reader goes away, the next line would end this process.
bool isPipe(int file)
{
    struct stat status = {};
    return fstat(file, &status) == 0 && S_ISFIFO(status.st_mode);
}

} // namespace

AppendFile::~AppendFile()
{
    if (isOpen())
        ::close(static_cast<int>(m_handle));
}

// Without O_NONBLOCK, opening a pipe would block until it has a reader.
bool AppendFile::open(const QString& path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK,
                            kEverybodyMayReadAndWrite);
    if (file == -1)
        return false;
    if (isPipe(file)) {
        ::close(file);
        return false;
    }
    m_handle = file;
    return true;
}

void AppendFile::append(const QByteArray& bytes)
{
    const int file = static_cast<int>(m_handle);
    while (::write(file, bytes.constData(), static_cast<std::size_t>(bytes.size())) == -1 && errno == EINTR) {
    }
}

} // namespace zr
