#pragma once

#include "cache/thumbnail_database.h"
#include "core/file_reader_base.h"

#include <QImage>
#include <QString>

#include <memory>

namespace zr
{

/// One thumbnail request for one source file: made, run once and destroyed by the extractor, on its thread.
class ThumbnailJob
{
public:
    /// Opens the cache database and makes the folder of the cached pictures.
    explicit ThumbnailJob(const QString& sourcePath);

    /// Makes sure that the cache holds a picture of the source file's present state. False, with the reason in the
    /// log, when there is none. Errors that are no QString pass through.
    bool run();

private:
    bool needCreateImage();
    bool isFresh(const QString& pngPath) const;
    void readImage();
    bool saveImage();
    QString pngPath() const;

    QString m_sourcePath;
    QImage m_image;
    ThumbnailDatabase m_database;
    QString m_imageDir; ///< with a trailing "/"; empty when the folder could not be made
    std::unique_ptr<FileReaderBase> m_reader;
};

} // namespace zr
