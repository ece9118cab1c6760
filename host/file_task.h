// SPDX-License-Identifier: MIT
#pragma once

#include "cache/shared_pictures.h"
#include "host/failure_reason.h"
#include "host/file_list.h"
#include "host/options.h"

#include <QDateTime>
#include <QImage>
#include <QSize>
#include <QString>

#include <optional>

namespace zr
{

/// What became of one file.
struct FileResult {
    QString picture;         ///< path of its PNG: the output that was asked for, else the one in the cache
    QSize size;              ///< of that picture, in pixels
    bool isCached = false;   ///< whether the picture was there already
    double milliseconds = 0; ///< that it took
    Failure failure;         ///< why it has no thumbnail; its reason is empty when it has one
    QString writeFault;      ///< why the picture could not be written to its output; empty when it was
    QString note;            ///< what is odd about the picture; empty when nothing is
    QImage cell;             ///< the picture as a contact sheet shows it, if there is to be one

    bool hasThumbnail() const { return failure.reason.isEmpty(); }
};

/// The memory, in bytes, that reading and drawing the file takes, of which much stays in the process: an estimate by
/// the file's size.
qint64 memoryFor(const QString& path);

/// What a run does for each of its files: the request, and the outputs of the file's own.
class FileTask
{
public:
    explicit FileTask(const Options& options);

    FileResult run(const ListedFile& file);

private:
    void make(const ListedFile& file, FileResult& result);
    void write(const QString& output, const QString& source, const QDateTime& sourceTime, const QImage& picture,
               FileResult& result) const;

    const Options& m_options;
    std::optional<SharedPictures> m_sharedPictures;
};

} // namespace zr
