// SPDX-License-Identifier: MIT
#include "cache/replace_file.h"

#include <QFile>

#include <cstdio>

namespace zr
{

bool replaceFile(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace zr
