// SPDX-License-Identifier: MIT
#include "host/request.h"

#include "cache/cached_pictures.h"
#include "core/data_location.h"
#include "core/log_contract.h"
#include "core/printable.h"
#include "core/reasons.h"
#include "host/failure_keys.h"

#include <QFileInfo>

#include <exception>
#include <memory>
#include <stdexcept>

namespace zr
{
namespace
{

constexpr char kNameNotText[] = "its name is not text in the encoding of this system; rename it";
constexpr char kNameNotTextForCache[] = "its name is not text, which the cache cannot record: rename it, or use "
                                        "--no-cache with --output-dir or --sheet";

// Whether the file was loaded. An exception is a failure like any other: the server's DLL does not report them either.
bool load(ThumbnailClient& client, const QString& path)
{
    try {
        return client.load(path);
    } catch (const std::exception&) {
        return false;
    }
}

RequestResult requestFrom(ThumbnailClient& client, const QString& path, DataFolderUse use)
{
    RequestResult result;
    const bool loaded = load(client, path);
    if (!loaded)
        result.failure = failureOf(path, client.messages(path));
    // Also after a failure, since it ends the request's log instance.
    result.picture = client.extract();
    if (!loaded || use == DataFolderUse::None)
        return result;
    result.pngPath = findPicture(path);
    if (result.picture.isNull() || result.pngPath.isEmpty())
        result.failure = lostPicture(path, result.pngPath);
    return result;
}

RequestResult failed(const Failure& failure)
{
    RequestResult result;
    result.failure = failure;
    return result;
}

RequestResult requestOnce(const QString& path, const QString& serverPath, DataFolderUse use)
{
    std::unique_ptr<ThumbnailClient> client;
    try {
        client = makeThumbnailClient(serverPath, use);
    } catch (const std::runtime_error& error) {
        return failed({key::kServer, QString::fromLocal8Bit(error.what())});
    }
    return requestFrom(*client, path, use);
}

// A user's very first request fails, since the data folder does not exist yet.
RequestResult requestUpToTwice(const QString& path, const QString& serverPath, DataFolderUse use)
{
    const bool mayRepeat = use == DataFolderUse::Usual && !QFileInfo::exists(dataFolder());
    RequestResult result = requestOnce(path, serverPath, use);
    if (!result.succeeded() && mayRepeat)
        result = requestOnce(path, serverPath, use);
    return result;
}

} // namespace

RequestResult requestThumbnail(const QString& path, const QString& serverPath, DataFolderUse use)
{
    if (use == DataFolderUse::Usual && !path.isValidUtf16())
        return failed({key::kNameNotText, talksToServer() ? kNameNotText : kNameNotTextForCache});
    try {
        RequestResult result = requestUpToTwice(path, serverPath, use);
        // It contains names of files and folders.
        result.failure.reason = printable(result.failure.reason);
        return result;
    } catch (const std::exception&) {
        // Memory ran out while the result was described, not in the request itself. Other files may succeed.
        return failed({key::kMemoryOut, reason::kMemoryShort});
    }
}

} // namespace zr
