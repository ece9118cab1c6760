// SPDX-License-Identifier: MIT
#include "desktop/messages.h"

#include "core/printable.h"

#include <cstdio>
#include <cstring>

namespace zr::desktop
{

QByteArray shown(const QByteArray& bytes)
{
    return printable(QString::fromUtf8(bytes)).toUtf8();
}

void printError(const QByteArray& text)
{
    const QByteArray line = "zrthumbnailer: " + text + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}

QByteArray systemsWords(int error)
{
    return std::strerror(error);
}

} // namespace zr::desktop
