#include "readers/slice/read_bytes.h"

namespace zr
{

bool readBytes(QFile& file, qint64 count, std::vector<uchar>& bytes)
{
    if (file.size() - file.pos() < count)
        return false;
    bytes.resize(static_cast<std::size_t>(count));
    return file.read(reinterpret_cast<char*>(bytes.data()), count) == count;
}

} // namespace zr
