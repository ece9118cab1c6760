// SPDX-License-Identifier: MIT
#include "fuzz/input_file.h"

#include <QTemporaryFile>

#include <cstdlib>

namespace zr::fuzz
{

QString inputFile(const QByteArray& input)
{
    static QTemporaryFile file;
    const bool written = (file.isOpen() || file.open()) && file.resize(input.size()) && file.seek(0) &&
                         file.write(input) == input.size() && file.flush();
    if (!written)
        std::abort();
    return file.fileName();
}

} // namespace zr::fuzz
