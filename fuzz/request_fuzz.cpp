// SPDX-License-Identifier: MIT
// A whole request: the input becomes a file whose suffix its last byte chooses, and the extractor makes and hands out
// its thumbnail, with database, cached picture and log in a data folder of this process. Models are read but not
// drawn, unless QT_QPA_PLATFORM names a platform with OpenGL.

#include "core/data_location.h"
#include "fuzz/preview_limits.h"
#include "host/log_tail.h"
#include "readers/reader_table.h"
#include "request/thumbnail_extractor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace
{

using namespace zr;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

// The folder of the source files, beside the data folder. Only one file, row and picture per suffix exist.
const QString& sourceFolder()
{
    static const QTemporaryDir folder;
    static const QString path = [] {
        require(folder.isValid());
        qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        // Otherwise the first request would fail.
        require(QDir().mkpath(thumbnailImageFolder()));
        return folder.path();
    }();
    return path;
}

// Deletes what would let the next request answer from the cache, and the log before it takes too much room.
void forgetRequests(const QString& png)
{
    constexpr qint64 kLogBytes = 1 << 20;
    QFile::remove(png);
    if (QFileInfo(defaultLogPath()).size() > kLogBytes)
        QFile::remove(defaultLogPath());
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size());
}

// Whether the request has logged why the reader for the suffix failed, which is what zrthumb looks for.
bool tellsReason(const QStringList& messages, const QString& suffix, const QString& path)
{
    const FailureLines failures = readerFailures(suffix);
    return std::any_of(messages.cbegin(), messages.cend(), [&](const QString& message) {
        return std::any_of(failures.cbegin(), failures.cend(),
                           [&](const FailureLine& line) { return isLine(message, line, asLogged(path)); });
    });
}

// Whether the request succeeded; then its picture exists, and the next request finds it. It may only throw because a
// file claims more memory than there is.
bool requestSucceeds(const QString& path, const QString& png)
{
    const LogTail log;
    try {
        ThumbnailExtractor extractor;
        const bool loaded = extractor.load(path);
        const QImage picture = extractor.extract();
        const QString suffix = QFileInfo(path).suffix();
        require(loaded || !supportedSuffixes().contains(suffix) || tellsReason(log.messagesOf(path), suffix, path));
        require(picture.isNull() != loaded && QFile::exists(png) >= loaded);
        require(!loaded || (picture.width() == picture.height() && picture.width() >= 400));
        return loaded;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QStringList suffixes = supportedSuffixes() << "txt";
    if (size == 0)
        return 0;
    const QString& suffix = suffixes.at(data[size - 1] % suffixes.size());
    QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size - 1));
    fuzz::limitPreview(suffix, input);

    const QString path = sourceFolder() + "/source." + suffix;
    const QString png = thumbnailImageFolder() + "source." + suffix + suffix + ".png";
    forgetRequests(png);
    write(path, input);
    if (requestSucceeds(path, png))
        require(requestSucceeds(path, png));
    return 0;
}
