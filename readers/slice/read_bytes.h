#pragma once

#include <QFile>

#include <vector>

namespace zr
{

/// Reads `count` bytes at the file's current position with one read. False when the file does not hold that many; then
/// nothing is allocated for them, since the size field of a small file may say 2 GiB.
bool readBytes(QFile& file, qint64 count, std::vector<uchar>& bytes);

} // namespace zr
