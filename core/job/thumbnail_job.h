// SPDX-License-Identifier: MIT
#pragma once

#include "cache/thumbnail_database.h"
#include "core/failure_line.h"
#include "core/file_reader_base.h"
#include "core/log_contract.h"
#include "core/reasons.h"

#include <QImage>
#include <QString>

#include <memory>

namespace zr
{

// The log lines that show where a job failed. Each failed job's last line is kJobFailed, unless an error other than a
// QString ended it.
constexpr ThrownKey kNotSupported{line::kNotSupported, key::kNotSupported, reason::kNotSupported};
constexpr ThrownKey kNoPicture{line::kNoPicture, key::kNoPicture, reason::kDamagedOrNoMemory};
constexpr ThrownKey kNotSaved{line::kNotSaved, key::kNotSaved, reason::kNotSaved};
constexpr FailureLine kJobFailed{line::kJobFailed, "getImage False", FailureLine::Rest::None,
                                 reason::kDamagedOrNoMemory};

/// A new reader of the source file, by its suffix. Throws an error key when no format has that suffix.
std::unique_ptr<FileReaderBase> requireReader(const QString& sourcePath);

/// The picture of its file. Throws an error key when there is none, with the reason in the log.
QImage requirePicture(FileReaderBase& reader);

/// One thumbnail request for one source file: made, run once and destroyed by the extractor, on its thread.
class ThumbnailJob
{
public:
    /// Opens the cache database and makes the folder of the cached pictures.
    explicit ThumbnailJob(const QString& sourcePath);

    /// Makes sure that the cache has an up-to-date picture of the source file: when it has none, the reader for the
    /// file's suffix makes one, which is stored. False, with the reason in the log, when that fails. Errors other than
    /// a QString pass through.
    bool run();

private:
    bool needCreateImage();
    bool saveImage();

    QString m_sourcePath;
    QImage m_image;
    ThumbnailDatabase m_database;
    QString m_imageDir; ///< with a trailing "/"; empty when the folder could not be made
    std::unique_ptr<FileReaderBase> m_reader;
};

} // namespace zr
