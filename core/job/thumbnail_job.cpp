// SPDX-License-Identifier: MIT
#include "core/job/thumbnail_job.h"

#include "cache/cached_pictures.h"
#include "core/data_location.h"
#include "core/log_file.h"
#include "readers/reader_table.h"

#include <QDir>
#include <QFileInfo>

namespace zr
{

std::unique_ptr<FileReaderBase> requireReader(const QString& sourcePath)
{
    auto reader = makeReader(QFileInfo(sourcePath).suffix(), sourcePath);
    if (!reader)
        throwKey(kNotSupported);
    return reader;
}

QImage requirePicture(FileReaderBase& reader)
{
    QImage picture = reader.getImage();
    if (picture.isNull())
        throwKey(kNoPicture);
    return picture;
}

ThumbnailJob::ThumbnailJob(const QString& sourcePath)
    : m_sourcePath(sourcePath), m_database(QString()), m_imageDir(thumbnailImageFolder())
{
    // Created after the database is opened, which therefore fails in a profile without a data folder: a user's very
    // first request fails, and the next one finds the folder.
    if (!QDir().mkpath(m_imageDir))
        m_imageDir.clear();
}

bool ThumbnailJob::run()
{
    if (!needCreateImage())
        return true;
    try {
        m_reader = requireReader(m_sourcePath);
        m_image = requirePicture(*m_reader);
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
    return !freshPicture(m_database, m_sourcePath);
}

bool ThumbnailJob::saveImage()
{
    return !m_imageDir.isEmpty() && store(m_database, m_sourcePath, m_image);
}

} // namespace zr
