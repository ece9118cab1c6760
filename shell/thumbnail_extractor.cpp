#include "shell/thumbnail_extractor.h"

#include "cache/thumbnail_database.h"
#include "core/log_file.h"
#include "core/thumbnail_job.h"
#include "shell/qt_bootstrap.h"

#include <QFileInfo>

namespace zr
{
namespace
{

constexpr int kLineLoad = 37;

} // namespace

bool ThumbnailExtractor::load(const QString& path)
{
    m_filePath.clear();
    LogFile::instance()->init(QString());
    logLine(kLineLoad, QLatin1String("in 2 ") + path);
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
    const ThumbnailDatabase database{QString()};
    const QVariant thumPath = database.queryValue(m_filePath, QStringLiteral("thumPath"));
    QImage image;
    if (!thumPath.isNull() && QFileInfo(thumPath.toString()).isFile())
        image.load(thumPath.toString());
    LogFile::end();
    return image;
}

} // namespace zr
