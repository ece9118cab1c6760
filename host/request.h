// SPDX-License-Identifier: MIT
#pragma once

#include "host/failure_reason.h"
#include "host/thumbnail_client.h"

#include <QImage>
#include <QString>

namespace zr
{

/// The result for one file.
struct RequestResult {
    QImage picture;  ///< what extract handed back; null when there is no thumbnail
    QString pngPath; ///< absolute path of the cached PNG; empty without the cache
    Failure failure; ///< why there is no thumbnail; its reason is empty when there is one

    bool succeeded() const { return failure.reason.isEmpty(); }
};

/// Runs one request for the file at the absolute `path`, with the server `serverPath` (see makeThumbnailClient).
/// In a fresh profile, where the first request fails since it has yet to make the data folder, it is repeated once.
RequestResult requestThumbnail(const QString& path, const QString& serverPath,
                               DataFolderUse use = DataFolderUse::Usual);

} // namespace zr
