// SPDX-License-Identifier: MIT
#include "cache/picture_file.h"

#include "cache/whole_file.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>

namespace zr
{
namespace
{

// In memory: encoding takes far longer than writing, so a killed process rarely leaves a temporary file.
QByteArray encoded(const QImage& picture, const QString& format)
{
    QBuffer buffer;
    return picture.save(&buffer, format.toLatin1().constData()) ? buffer.data() : QByteArray();
}

bool saveDirectly(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && writeAll(file, bytes);
}

} // namespace

bool savePicture(const QImage& picture, const QString& path)
{
    const QFileInfo target(path);
    // A folder, or a pipe, which may have nobody at its other end.
    if (target.exists() && !target.isFile())
        return false;
    const QByteArray bytes = encoded(picture, target.suffix());
    if (bytes.isEmpty())
        return false;
    if (target.isSymLink() || (target.exists() && !target.isWritable()))
        return saveDirectly(path, bytes);
    const WholeFile outcome = writeWhole(path, bytes);
    return outcome == WholeFile::Written || (outcome == WholeFile::NotPossible && saveDirectly(path, bytes));
}

} // namespace zr
