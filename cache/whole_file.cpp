// SPDX-License-Identifier: MIT
#include "cache/whole_file.h"

#include "cache/replace_file.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

namespace zr
{
namespace
{

// Short, since the file's own name may already have the max length, and unlike any source file's name.
QString temporaryPath(const QFileInfo& target)
{
    return QStringLiteral("%1/.%2.%3")
        .arg(target.path(), QString::number(QRandomGenerator::global()->generate64(), 36), target.suffix());
}

} // namespace

// A short write reports no error: only the attempt to write the rest shows why it does not fit.
bool writeAll(QFile& file, const QByteArray& bytes)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        const qint64 written = file.write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

WholeFile writeWhole(const QString& path, const QByteArray& bytes, QString* reason)
{
    QFile file(temporaryPath(QFileInfo(path)));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return WholeFile::NotPossible;
    const bool written = writeAll(file, bytes);
    if (!written && reason)
        *reason = file.errorString();
    file.close();
    if (written && replaceFile(file.fileName(), path))
        return WholeFile::Written;
    file.remove();
    return written ? WholeFile::NotPossible : WholeFile::Failed;
}

} // namespace zr
