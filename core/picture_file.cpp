#include "core/picture_file.h"

#include "core/replace_file.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

namespace zr
{
namespace
{

// Short, since the picture's own name may be as long as a name can be, and like no name that a source file gets.
QString temporaryPath(const QFileInfo& target)
{
    return QStringLiteral("%1/.%2.%3")
        .arg(target.path(), QString::number(QRandomGenerator::global()->generate64(), 36), target.suffix());
}

// In memory, so that a process that is killed seldom leaves a temporary file: encoding takes far longer than writing.
QByteArray encoded(const QImage& picture, const QString& format)
{
    QBuffer buffer;
    return picture.save(&buffer, format.toLatin1().constData()) ? buffer.data() : QByteArray();
}

// What is still in a buffer has not been written yet, so the last word is flush()'s.
bool write(QFile& file, const QByteArray& bytes)
{
    return file.write(bytes) == bytes.size() && file.flush();
}

bool saveDirectly(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && write(file, bytes);
}

} // namespace

bool savePicture(const QImage& picture, const QString& path)
{
    const QFileInfo target(path);
    // A folder, or something to wait for: nobody may be at the other end of a pipe.
    if (target.exists() && !target.isFile())
        return false;
    const QByteArray bytes = encoded(picture, target.suffix());
    if (bytes.isEmpty())
        return false;
    if (target.isSymLink() || (target.exists() && !target.isWritable()))
        return saveDirectly(path, bytes);

    QFile file(temporaryPath(target));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return saveDirectly(path, bytes);
    const bool written = write(file, bytes);
    file.close();
    if (written && replaceFile(file.fileName(), path))
        return true;
    file.remove();
    return written && saveDirectly(path, bytes);
}

} // namespace zr
