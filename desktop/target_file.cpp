// SPDX-License-Identifier: MIT
#include "desktop/target_file.h"

#include "desktop/messages.h"
#include "desktop/options.h"
#include "desktop/source_file.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zr::desktop
{
namespace
{

constexpr std::array<char, 8> kPngSignature = {'\x89', 'P', 'N', 'G', '\r', '\n', '\x1a', '\n'};

constexpr char kIsInput[] = "this is INPUT itself; name the PNG to write";

// As the shell's > makes them.
constexpr mode_t kNewFileMode = 0666;

bool isEmptyOrPng(int file, const struct stat& status)
{
    std::array<char, kPngSignature.size()> begin{};
    return status.st_size == 0 ||
           (pread(file, begin.data(), begin.size(), 0) == ssize_t{begin.size()} && begin == kPngSignature);
}

// To what can be written only, a pipe or a device for example, there is nothing to look at.
int openForWriting(const QByteArray& path)
{
    constexpr int flags = O_CREAT | O_CLOEXEC | O_NOCTTY;
    struct stat status = {};
    const bool isSpecial = stat(path.constData(), &status) == 0 && !S_ISREG(status.st_mode);
    return open(path.constData(), flags | (isSpecial ? O_WRONLY : O_RDWR), kNewFileMode);
}

bool writeAll(int file, const char* bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t written = write(file, bytes, count);
        if (written < 0 && errno != EINTR)
            return false;
        const std::size_t done = written < 0 ? 0 : static_cast<std::size_t>(written);
        bytes += done;
        count -= done;
    }
    return true;
}

} // namespace

QByteArray TargetFile::open(const QByteArray& output, const SourceFile& source)
{
    if (output == Options::kStdout)
        return openStdout(source);
    m_file = Descriptor(openForWriting(output));
    struct stat status = {};
    if (!m_file.isOpen() || fstat(m_file.number(), &status) != 0)
        return "cannot be written: " + systemsWords(errno);
    m_descriptor = m_file.number();
    m_isRegular = S_ISREG(status.st_mode);
    if (source.isSame(status))
        return refuse(kIsInput);
    if (m_isRegular && !isEmptyOrPng(m_descriptor, status))
        return refuse("this file is no PNG, and is not overwritten");
    return {};
}

QByteArray TargetFile::openStdout(const SourceFile& source)
{
    m_descriptor = STDOUT_FILENO;
    struct stat status = {};
    if (isatty(m_descriptor) == 1)
        return refuse("a picture is nothing for a terminal; lead it to a file or another program");
    if (fstat(m_descriptor, &status) != 0)
        return "cannot be written: " + systemsWords(errno);
    m_isRegular = S_ISREG(status.st_mode);
    return source.isSame(status) ? refuse(kIsInput) : QByteArray();
}

QByteArray TargetFile::refuse(const QByteArray& reason)
{
    m_isMistaken = true;
    return reason;
}

QByteArray TargetFile::write(const QByteArray& bytes)
{
    const auto count = static_cast<std::size_t>(bytes.size());
    if (writeAll(m_descriptor, bytes.constData(), count) &&
        (!m_file.isOpen() || !m_isRegular || ftruncate(m_descriptor, bytes.size()) == 0))
        return {};
    const QByteArray reason = "cannot be written: " + systemsWords(errno);
    // Half a picture is worse than none.
    if (m_file.isOpen() && m_isRegular && ftruncate(m_descriptor, 0) != 0)
        return reason + "; what is there is not a whole picture";
    return reason;
}

} // namespace zr::desktop
