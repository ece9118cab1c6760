#include "host/request.h"

#include "cache/thumbnail_database.h"
#include "core/data_location.h"
#include "host/failure_reason.h"
#include "host/log_tail.h"
#include "host/thumbnail_client.h"

#include <QFileInfo>

#include <exception>

namespace zr
{
namespace
{

QString cachedPngPath(const QString& path)
{
    const ThumbnailDatabase database{QString()};
    return database.queryValue(path, QStringLiteral("thumPath")).toString();
}

RequestResult requestOnce(const QString& path, const QString& serverPath)
{
    const LogTail log;
    RequestResult result;
    QString error;
    try {
        const auto client = makeThumbnailClient(serverPath);
        bool loaded = false;
        try {
            loaded = client->load(path);
        } catch (const std::exception& exception) {
            error = QStringLiteral("unexpected error: ") + QString::fromLocal8Bit(exception.what());
        }
        // Also after a failure, since it ends the request's log instance.
        result.picture = client->extract();
        if (loaded)
            result.pngPath = cachedPngPath(path);
    } catch (const std::exception& exception) {
        error = QString::fromLocal8Bit(exception.what());
    }
    if (result.picture.isNull() || result.pngPath.isEmpty())
        result.reason = error.isEmpty() ? failureReason(path, log.messagesOf(path)) : error;
    return result;
}

// A user's very first request fails, since it comes before the data folder.
RequestResult requestUpToTwice(const QString& path, const QString& serverPath)
{
    const bool dataFolderExisted = QFileInfo::exists(dataFolder());
    RequestResult result = requestOnce(path, serverPath);
    if (!result.succeeded() && !dataFolderExisted)
        result = requestOnce(path, serverPath);
    return result;
}

} // namespace

RequestResult requestThumbnail(const QString& path, const QString& serverPath)
{
    try {
        return requestUpToTwice(path, serverPath);
    } catch (const std::exception& exception) {
        // Not the request itself failed but what is told about it, for lack of memory. Other files may do better.
        RequestResult result;
        result.reason = QString::fromLocal8Bit(exception.what());
        return result;
    }
}

} // namespace zr
