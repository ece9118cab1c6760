// SPDX-License-Identifier: MIT
#include "readers/visibility.h"

#include "readers/mesh/obj_reading.h"
#include "readers/reader_table.h"

#include <QFileInfo>

#include <algorithm>

namespace zr
{

bool isInvisible(const QImage& picture)
{
    if (picture.isNull() || !picture.hasAlphaChannel())
        return false;
    const bool hasPlainAlpha =
        picture.format() == QImage::Format_ARGB32 || picture.format() == QImage::Format_ARGB32_Premultiplied;
    const QImage pixels = hasPlainAlpha ? picture : picture.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < pixels.height(); ++y) {
        const auto* const row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        if (std::any_of(row, row + pixels.width(), [](QRgb pixel) { return qAlpha(pixel) != 0; }))
            return false;
    }
    return true;
}

QString invisibilityReason(const QString& path, const char* aboutFaces)
{
    const QString nothing = QStringLiteral("nothing can be seen in its thumbnail");
    const QString suffix = QFileInfo(path).suffix().toLower();
    // An index that is not a plain number counts as the first point, number 0.
    if (suffix == QLatin1String("obj") && objReading() == ObjReading::Server)
        return nothing + QStringLiteral("; mostly because its faces have slashes ('f 1/2/3') or negative numbers") +
               QLatin1String(aboutFaces);
    if (isModel(suffix))
        return nothing + QStringLiteral("; its triangles may have no area, or face away");
    return nothing + QStringLiteral("; the preview in it is empty");
}

} // namespace zr
