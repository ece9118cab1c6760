#pragma once

#include "cache/thumbnail_database.h"
#include "core/failure_line.h"
#include "core/file_reader_base.h"
#include "core/reasons.h"

#include <QImage>
#include <QString>

#include <memory>

namespace zr
{

// The log's lines by which it is known where a job failed. Each failed job's last line is kJobFailed, unless an error
// that is no QString ended it.
constexpr ThrownKey kNotSupported{60, "fileIsNotSupport", reason::kNotSupported};
constexpr ThrownKey kNoPicture{65, "prevImageGetErr", reason::kDamagedOrNoMemory};
constexpr ThrownKey kNotSaved{69, "pushDataErr", reason::kNotSaved};
constexpr FailureLine kJobFailed{73, "getImage False", FailureLine::Rest::None, reason::kDamagedOrNoMemory};

/// Where the job for that source file saves its picture.
QString picturePath(const QString& sourcePath);

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

    QString m_sourcePath;
    QImage m_image;
    ThumbnailDatabase m_database;
    QString m_imageDir; ///< with a trailing "/"; empty when the folder could not be made
    std::unique_ptr<FileReaderBase> m_reader;
};

} // namespace zr
