#include "tools/samples/fdg_bytes.h"

#include "tools/samples/put_bytes.h"

namespace zr::samples
{

QByteArray fdgBytes(const FdgParts& parts)
{
    constexpr int kHeadBytes = 216;
    QByteArray bytes(kHeadBytes, '\0');
    putLittleEndian<qint32>(bytes, 44, parts.previewHeadOffset.value_or(kHeadBytes));
    putLittleEndian<qint32>(bytes, 48, parts.secondHeadOffset.value_or(kHeadBytes));
    putPreview(bytes, kHeadBytes, parts.preview);
    return bytes;
}

} // namespace zr::samples
