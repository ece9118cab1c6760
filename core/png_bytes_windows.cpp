// SPDX-License-Identifier: MIT
#include "core/png_bytes.h"

#include <QBuffer>

namespace zr
{

QByteArray pngBytes(const QImage& picture)
{
    QBuffer buffer;
    return picture.save(&buffer, "PNG") ? buffer.data() : QByteArray();
}

} // namespace zr
