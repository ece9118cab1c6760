// SPDX-License-Identifier: MIT
#include "request/thumbnail_extractor.h"

#include "cache/cached_pictures.h"
#include "core/job/thumbnail_job.h"
#include "core/log_contract.h"
#include "core/log_file.h"
#include "request/qt_bootstrap.h"

#include <QFileInfo>

namespace zr
{
bool ThumbnailExtractor::load(const QString& path)
{
    m_filePath.clear();
    LogFile::instance()->init(QString());
    logLine(line::kLoad, QLatin1String(kLoadText) + path);
    startQt();
    if (!QFileInfo(path).isFile())
        return false;
    ThumbnailJob job(path);
    if (!job.run())
        return false;
    m_filePath = path;
    return true;
}

QImage ThumbnailExtractor::extract() const
{
    const QString pngPath = findPicture(m_filePath);
    QImage image;
    if (QFileInfo(pngPath).isFile())
        image.load(pngPath);
    LogFile::end();
    return image;
}

} // namespace zr
