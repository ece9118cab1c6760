// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

#include <memory>

namespace zr
{

/// Whether a request may read and write the user's data folder: the cache and the log. Without them only on Linux.
enum class DataFolderUse { Usual, None };

/// How the host asks for thumbnails: one object per file, as in the file browser.
/// The Linux host calls the extractor directly, the Windows host goes through COM.
class ThumbnailClient
{
public:
    virtual ~ThumbnailClient() = default;

    /// True when the file's thumbnail is ready. May throw standard exceptions.
    virtual bool load(const QString& path) = 0;

    /// What the request for `path` has logged so far, without time stamps.
    virtual QStringList messages(const QString& path) const = 0;

    /// The thumbnail of the loaded file, or a null image.
    virtual QImage extract() = 0;
};

/// Whether clients talk to a server, which can be named.
bool talksToServer();

/// Tells that other processes of the same run ask for thumbnails at the same time, so that the log has their lines
/// among those of a request. To be called before the first request.
void expectOthersInLog();

/// A new client. `serverPath` names the DLL to use without registration (Windows only), empty for the registered one.
/// Throws std::runtime_error with a sentence for the user when there is no server to talk to.
std::unique_ptr<ThumbnailClient> makeThumbnailClient(const QString& serverPath, DataFolderUse use);

} // namespace zr
