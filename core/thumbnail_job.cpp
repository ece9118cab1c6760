#include "core/thumbnail_job.h"

#include "core/data_location.h"
#include "core/log_file.h"
#include "core/picture_file.h"
#include "core/reader_table.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace zr
{
namespace
{

constexpr int kLineNoEntry = 84;
constexpr int kLineStaleEntry = 106;

// Copying, unpacking and syncing tools move a file's time stamp a little without changing the file.
constexpr quint64 kToleranceSeconds = 120;

quint64 modificationSeconds(const QFileInfo& file)
{
    return static_cast<quint64>(file.lastModified().toSecsSinceEpoch());
}

} // namespace

// The suffix is doubled, as in every cache that users already have.
QString picturePath(const QString& sourcePath)
{
    const QFileInfo source(sourcePath);
    return thumbnailImageFolder() + source.fileName() + source.suffix() + QLatin1String(".png");
}

ThumbnailJob::ThumbnailJob(const QString& sourcePath)
    : m_sourcePath(sourcePath), m_database(QString()), m_imageDir(thumbnailImageFolder())
{
    // After the database, which therefore stays closed in a profile that has no data folder yet: the very first
    // request of a user fails, the next one finds the folder.
    if (!QDir().mkpath(m_imageDir))
        m_imageDir.clear();
}

bool ThumbnailJob::run()
{
    if (!needCreateImage())
        return true;
    try {
        readImage();
        if (!saveImage())
            throwKey(kNotSaved);
        return true;
    } catch (const QString&) {
        logLine(kJobFailed);
        return false;
    }
}

bool ThumbnailJob::needCreateImage()
{
    try {
        const QVariant thumPath = m_database.queryValue(m_sourcePath, QStringLiteral("thumPath"));
        if (thumPath.isNull())
            throwKey(kLineNoEntry, "needCreateImage");
        if (!isFresh(thumPath.toString()))
            throwKey(kLineStaleEntry, "needCreateImage");
        return false;
    } catch (const QString&) {
        return true;
    }
}

bool ThumbnailJob::isFresh(const QString& pngPath) const
{
    const quint64 fileTime = m_database.queryValue(m_sourcePath, QStringLiteral("fileTime")).toULongLong();
    const quint64 fileSize = m_database.queryValue(m_sourcePath, QStringLiteral("fileSize")).toULongLong();
    const QFileInfo source(m_sourcePath);
    // Unsigned on purpose: a time stamp that moved backwards gives a huge difference.
    return QFileInfo::exists(pngPath) && static_cast<quint64>(source.size()) == fileSize &&
           modificationSeconds(source) - fileTime <= kToleranceSeconds;
}

void ThumbnailJob::readImage()
{
    m_reader = makeReader(QFileInfo(m_sourcePath).suffix(), m_sourcePath);
    if (!m_reader)
        throwKey(kNotSupported);
    m_image = m_reader->getImage();
    if (m_image.isNull())
        throwKey(kNoPicture);
}

bool ThumbnailJob::saveImage()
{
    if (m_imageDir.isEmpty())
        return false;
    // Taken before saving: a source that changes meanwhile must look stale next time.
    const QFileInfo source(m_sourcePath);
    ThumbnailRecord record;
    record.thumPath = picturePath(m_sourcePath);
    record.filePath = m_sourcePath;
    record.fileTime = modificationSeconds(source);
    record.fileSize = static_cast<quint64>(source.size());
    return savePicture(m_image, record.thumPath) && m_database.saveRecord(m_sourcePath, record);
}

} // namespace zr
