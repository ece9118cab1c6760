// SPDX-License-Identifier: MIT
#include "host/output_file.h"

#include "cache/whole_file.h"
#include "core/png_bytes.h"
#include "host/console.h"

#include <QFile>
#include <QFileInfo>

namespace zr
{
namespace
{

// The file is not truncated first: after a failure, the older bytes can be put back into the space that they had.
QString overwrite(QFile& file, const QByteArray& bytes)
{
    const QByteArray older = file.readAll();
    if (file.seek(0) && writeAll(file, bytes) && file.resize(bytes.size()))
        return {};
    const QString reason = file.errorString();
    if (file.seek(0) && writeAll(file, older))
        file.resize(older.size());
    return reason;
}

QString writeInPlace(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (QFileInfo(path).isFile())
        return file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) ? overwrite(file, bytes) : file.errorString();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || !writeAll(file, bytes))
        return file.errorString();
    return {};
}

} // namespace

QString writeOutput(const QImage& picture, const QString& path)
{
    const QByteArray bytes = pngBytes(picture);
    if (bytes.isEmpty())
        return QStringLiteral("the picture cannot be encoded");
    if (path == QLatin1String(kStdoutName))
        return writeStdout(bytes);
    const QFileInfo target(path);
    const bool isReplaceable = !target.isSymLink() && (!target.exists() || (target.isFile() && target.isWritable()));
    if (!isReplaceable)
        return writeInPlace(path, bytes);
    const bool existed = target.exists();
    const QFile::Permissions permissions = target.permissions();
    QString reason;
    switch (writeWhole(path, bytes, &reason)) {
    case WholeFile::Written:
        if (existed)
            QFile::setPermissions(path, permissions);
        return {};
    case WholeFile::Failed:
        return reason;
    case WholeFile::NotPossible:
        break;
    }
    return writeInPlace(path, bytes);
}

} // namespace zr
