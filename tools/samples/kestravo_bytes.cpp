#include "tools/samples/kestravo_bytes.h"

#include "tools/samples/put_bytes.h"

namespace zr::samples
{

QByteArray kestravoBytes(const KestravoParts& parts)
{
    constexpr int kHeadBytes = 412;
    QByteArray bytes(kHeadBytes, '\0');
    putLittleEndian<qint32>(bytes, 12, parts.thumbnailOffset.value_or(kHeadBytes));
    putPreview(bytes, kHeadBytes, parts.preview);
    return bytes;
}

} // namespace zr::samples
