// SPDX-License-Identifier: MIT
#include "host/request.h"

#include "cache/cached_pictures.h"
#include "core/data_location.h"
#include "core/reasons.h"
#include "host/console.h"
#include "host/failure_reason.h"
#include "host/log_tail.h"
#include "host/thumbnail_client.h"

#include <QFileInfo>

#include <exception>
#include <memory>
#include <stdexcept>

namespace zr
{
namespace
{

// Whether the file was loaded. An exception is a failure like any other: the server's DLL does not report them either.
bool load(ThumbnailClient& client, const QString& path)
{
    try {
        return client.load(path);
    } catch (const std::exception&) {
        return false;
    }
}

RequestResult requestFrom(ThumbnailClient& client, const QString& path)
{
    const LogTail log;
    RequestResult result;
    const bool loaded = load(client, path);
    // Also after a failure, since it ends the request's log instance.
    result.picture = client.extract();
    if (loaded)
        result.pngPath = findPicture(path);
    if (!loaded)
        result.reason = failureReason(path, log.messagesOf(path));
    else if (result.picture.isNull() || result.pngPath.isEmpty())
        result.reason = lostPictureReason(path, result.pngPath);
    return result;
}

RequestResult failed(const QString& reason)
{
    RequestResult result;
    result.reason = reason;
    return result;
}

RequestResult requestOnce(const QString& path, const QString& serverPath)
{
    std::unique_ptr<ThumbnailClient> client;
    try {
        client = makeThumbnailClient(serverPath);
    } catch (const std::runtime_error& error) {
        return failed(QString::fromLocal8Bit(error.what()));
    }
    return requestFrom(*client, path);
}

// A user's very first request fails, since the data folder does not exist yet.
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
        RequestResult result = requestUpToTwice(path, serverPath);
        // It contains names of files and folders.
        result.reason = printable(result.reason);
        return result;
    } catch (const std::exception&) {
        // Memory ran out while the result was described, not in the request itself. Other files may succeed.
        return failed(QLatin1String(reason::kMemoryShort));
    }
}

} // namespace zr
